#ifndef STANDINS_STANDINCOMMANDLINE_H
#define STANDINS_STANDINCOMMANDLINE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Splits a raw command line in the product's quoting: arguments in double quotes with a backslash
// before every double quote and backslash, separated by spaces. The C runtime's rules would corrupt
// quotes and trailing backslashes. An unquoted argument ends at the next space and has no escapes.
std::vector<std::string> standinSplit(std::string_view commandLine);

// The value of the option "--name", if it is given.
std::optional<std::string> standinOption(const std::vector<std::string>& arguments,
                                         std::string_view name);

#endif
