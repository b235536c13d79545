#ifndef SHARED_NEAREST_H
#define SHARED_NEAREST_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The name that a mistyped word probably means: the one that the fewest characters have to be
// changed for, of equal ones the first. The case of ASCII letters does not count. Nothing when
// every name differs in more than a third of the word's characters, or the word is one of them.
std::optional<std::string> nearestName(std::string_view word,
                                       const std::vector<std::string>& names);

// "did you mean X?" for the nearest name; empty without one.
std::string nearestHint(std::string_view word, const std::vector<std::string>& names);

#endif
