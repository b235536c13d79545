#ifndef SHARED_TEXTSTYLE_H
#define SHARED_TEXTSTYLE_H

#include <string>
#include <string_view>

// How headings and errors look on a terminal; on anything else the text stays as it is.
class TextStyle {
 public:
    TextStyle() = default;

    // For a stream that is a terminal or not, and the value of the variable NO_COLOR; null when it
    // is not set. An empty value asks for nothing.
    TextStyle(bool isTerminal, const char* noColor);

    std::string heading(std::string_view text) const;
    std::string error(std::string_view text) const;

    // A program's help: lines that end with ":" and begin at the margin are headings.
    std::string help(std::string_view text) const;

 private:
    std::string wrap(const char* sequence, std::string_view text) const;

    bool coloured_ = false;
};

#endif
