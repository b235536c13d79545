#ifndef SHARED_TEXTSTYLE_H
#define SHARED_TEXTSTYLE_H

#include <string>
#include <string_view>

// Styles headings and errors on a terminal. Elsewhere, text stays unchanged.
class TextStyle {
 public:
    TextStyle() = default;

    // `noColor` is the value of the variable NO_COLOR, or null. An empty value does not turn
    // colours off.
    TextStyle(bool isTerminal, const char* noColor);

    std::string heading(std::string_view text) const;
    std::string error(std::string_view text) const;

    // Styles the headings of a help text: unindented lines that end with ":".
    std::string help(std::string_view text) const;

 private:
    std::string wrap(const char* sequence, std::string_view text) const;

    bool coloured_ = false;
};

#endif
