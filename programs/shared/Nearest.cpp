#include "shared/Nearest.h"

#include <algorithm>
#include <cstddef>

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Damerau-Levenshtein distance: a transposition of adjacent characters counts as one edit.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1;
            row[j] = std::min({row[j - 1] + 1, last[j] + 1, last[j - 1] + change});
            const bool isSwapped = i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                                   lower(a[i - 2]) == lower(b[j - 1]);
            if (isSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

}  // namespace

std::optional<std::string> nearestName(std::string_view word,
                                       const std::vector<std::string>& names) {
    std::optional<std::string> nearest;
    std::size_t least = word.size() / 3 + 1;
    for (const std::string& name : names) {
        if (name == word) return std::nullopt;
        const std::size_t changes = distance(word, name);
        if (changes >= least) continue;
        least = changes;
        nearest = name;
    }
    return nearest;
}

std::string nearestHint(std::string_view word, const std::vector<std::string>& names) {
    const std::optional<std::string> nearest = nearestName(word, names);
    return nearest ? "did you mean " + *nearest + "?" : "";
}
