#include "shared/TextStyle.h"

#include <cstddef>

TextStyle::TextStyle(bool isTerminal, const char* noColor)
    : coloured_(isTerminal && (noColor == nullptr || *noColor == '\0')) {}

std::string TextStyle::heading(std::string_view text) const { return wrap("\x1b[1m", text); }

std::string TextStyle::error(std::string_view text) const { return wrap("\x1b[31m", text); }

std::string TextStyle::help(std::string_view text) const {
    std::string styled;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        const std::string_view line = text.substr(at, end - at);
        const bool isHeading = !line.empty() && line.front() != ' ' && line.back() == ':';
        styled += isHeading ? heading(line) : std::string(line);
        if (end == std::string_view::npos) break;
        styled += '\n';
        at = end + 1;
    }
    return styled;
}

std::string TextStyle::wrap(const char* sequence, std::string_view text) const {
    if (!coloured_) return std::string(text);
    return std::string(sequence).append(text).append("\x1b[0m");
}
