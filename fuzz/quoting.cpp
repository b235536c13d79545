// Command lines. The product's programs parse them into the original arguments, which NULs separate
// in the input.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Check.h"
#include "StandinCommandLine.h"
#include "xpl/Xproc.h"

namespace {

XprocArguments argumentsOf(std::string_view input) {
    XprocArguments arguments;
    for (;;) {
        const std::size_t end = input.find('\0');
        arguments.emplace_back(input.substr(0, end));
        if (end == std::string_view::npos) return arguments;
        input.remove_prefix(end + 1);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const XprocArguments arguments = argumentsOf(textOf(data, size));
    for (std::size_t first = 0; first <= arguments.size() && first < 3; ++first) {
        const XprocArguments wanted(arguments.begin() + static_cast<std::ptrdiff_t>(first),
                                    arguments.end());
        check(standinSplit(xprocJoin(arguments, first)) == wanted, "a line gives its arguments");
    }
    for (const std::string& argument : arguments) {
        const std::string quoted = xprocQuote(argument);
        check(standinSplit(quoted) == XprocArguments{argument}, "quotes give their argument");
        check(quoted.size() >= argument.size() + 2 && quoted.size() <= 2 * argument.size() + 2,
              "quotes and at most one backslash for each character");
    }
    return 0;
}
