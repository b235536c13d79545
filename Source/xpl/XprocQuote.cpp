// The quoting of command lines.
#include <cstddef>
#include <string>
#include <string_view>

#include "xpl/Xproc.h"

std::string xprocQuote(std::string_view argument) {
    std::string text = "\"";
    for (const char c : argument) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text += '"';
}

std::string xprocJoin(const XprocArguments& arguments, std::size_t first) {
    std::string line;
    for (std::size_t i = first; i < arguments.size(); ++i) {
        if (i > first) line += ' ';
        line += xprocQuote(arguments[i]);
    }
    return line;
}
