#include "PlainConf.h"

#include <cstddef>

namespace {

constexpr std::size_t kLongestRead = 4096;
constexpr std::size_t kLongestWritten = 4095;  // including the line feed

std::vector<std::string> linesOf(std::string_view content) {
    std::vector<std::string> lines;
    bool inLine = false;
    for (const char c : content) {
        if (!inLine) lines.emplace_back();
        inLine = c != '\n';
        if (inLine) lines.back() += c;
    }
    return lines;
}

std::string untilNul(const std::string& text) { return text.c_str(); }

bool has(const std::string& text, char c) { return text.find(c) != std::string::npos; }

}  // namespace

PlainText plainText(std::string_view content) {
    PlainText result;
    for (const std::string& line : linesOf(content)) {
        const std::size_t equals = line.find('=');
        const bool wellFormed = equals != std::string::npos && line.size() <= kLongestRead;
        if (!wellFormed || equals + 1 == line.size()) {
            result.end = wellFormed ? PlainText::Throws : PlainText::Malformed;
            result.badLine = line;
            return result;
        }
        std::string value = line.substr(equals + 2);
        if (!value.empty()) value.pop_back();
        result.entries.push_back({line, line.substr(0, equals), untilNul(value)});
    }
    return result;
}

std::string plainLine(const std::string& key, const std::string& value) {
    return key + "=\"" + untilNul(value) + "\"\n";
}

XErr plainCheckEntry(const std::string& key, const std::string& value) {
    if (has(key, '\n') || has(key, '=') || has(key, '\0')) return XERR_INVAL;
    if (has(untilNul(value), '\n')) return XERR_INVAL;
    return plainLine(key, value).size() > kLongestWritten ? XERR_2BIG : XERR_SUCCESS;
}
