#ifndef CONF_CONFNUMBER_H
#define CONF_CONFNUMBER_H

#include <cstdint>
#include <string_view>

// Parses a decimal number by the rules of strtol in the C locale: skips leading white space,
// accepts a sign, stops at the first other character, and saturates.
//
// Returns false, which callers treat as fatal, only when the result is 0 and the conversion stopped
// before the end of the text: "" and "0" are 0, "12abc" is 12, "abc" is refused.
[[nodiscard]] bool confParseI32(std::string_view text, std::int32_t& number);
[[nodiscard]] bool confParseI64(std::string_view text, std::int64_t& number);

#endif
