#ifndef SHARED_NEAREST_H
#define SHARED_NEAREST_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The name nearest to a mistyped word by edit distance, ignoring the case of ASCII letters; of
// equally near names the first. Empty if every name differs in more than a third of the word's
// characters, or if the word is one of the names.
std::optional<std::string> nearestName(std::string_view word,
                                       const std::vector<std::string>& names);

// "did you mean X?" for the nearest name. Empty without one.
std::string nearestHint(std::string_view word, const std::vector<std::string>& names);

#endif
