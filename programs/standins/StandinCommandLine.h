#ifndef STANDINS_STANDINCOMMANDLINE_H
#define STANDINS_STANDINCOMMANDLINE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Arguments of a raw command line in the product's quoting: each between double quotes, with a
// backslash before every double quote and every backslash; separated by blanks. The C runtime's
// splitting would corrupt quotes and trailing backslashes. An argument without quotes, as people
// type it, ends at the next blank and has no escapes.
std::vector<std::string> standinSplit(std::string_view commandLine);

// Value of the option "--name" among the arguments; nothing when it is missing.
std::optional<std::string> standinOption(const std::vector<std::string>& arguments,
                                         std::string_view name);

#endif
