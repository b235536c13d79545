#ifndef SHARED_JOINED_H
#define SHARED_JOINED_H

#include <string>
#include <vector>

// Joins words with a separator.
inline std::string joined(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words) {
        if (&word != &words.front()) text += separator;
        text += word;
    }
    return text;
}

#endif
