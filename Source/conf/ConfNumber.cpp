// Decimal numbers without a locale.
#include "conf/ConfNumber.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

template <typename Number>
bool parse(std::string_view text, Number& number) {
    number = 0;
    std::string_view digits =
        text.substr(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    const bool plus = !digits.empty() && digits.front() == '+';
    if (plus) digits.remove_prefix(1);
    if (plus && !digits.empty() && digits.front() == '-') digits = {};
    const auto [stop, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc::result_out_of_range) {
        number = digits.front() == '-' ? std::numeric_limits<Number>::min()
                                       : std::numeric_limits<Number>::max();
    }
    // Without a digit the conversion stops at the start of the text, before any white space.
    const char* const reached = error == std::errc::invalid_argument ? text.data() : stop;
    return number != 0 || reached == text.data() + text.size();
}

}  // namespace

bool confParseI32(std::string_view text, std::int32_t& number) { return parse(text, number); }

bool confParseI64(std::string_view text, std::int64_t& number) { return parse(text, number); }
