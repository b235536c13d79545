#include "StandinCommandLine.h"

#include <algorithm>
#include <cstddef>

namespace {

// Takes an argument whose opening quote has been removed.
std::string takeQuoted(std::string_view& rest) {
    std::string argument;
    while (!rest.empty()) {
        char c = rest.front();
        rest.remove_prefix(1);
        if (c == '"') return argument;
        if (c == '\\' && !rest.empty()) {
            c = rest.front();
            rest.remove_prefix(1);
        }
        argument += c;
    }
    return argument;
}

std::string takePlain(std::string_view& rest) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    const std::string argument(rest.substr(0, end));
    rest.remove_prefix(end);
    return argument;
}

}  // namespace

std::vector<std::string> standinSplit(std::string_view commandLine) {
    std::vector<std::string> arguments;
    for (;;) {
        const std::size_t start = commandLine.find_first_not_of(' ');
        if (start == std::string_view::npos) return arguments;
        commandLine.remove_prefix(start);
        if (commandLine.front() == '"') {
            commandLine.remove_prefix(1);
            arguments.push_back(takeQuoted(commandLine));
        } else {
            arguments.push_back(takePlain(commandLine));
        }
    }
}

std::optional<std::string> standinOption(const std::vector<std::string>& arguments,
                                         std::string_view name) {
    const std::string wanted = "--" + std::string(name);
    for (std::size_t i = 1; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == wanted) return arguments[i + 1];
    }
    return std::nullopt;
}
