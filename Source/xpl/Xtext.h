#ifndef XPL_XTEXT_H
#define XPL_XTEXT_H

#include <string>
#include <string_view>

#include "xpl/Xerr.h"

// UTF-8 to UTF-16. For invalid UTF-8, returns the translated Windows error 1113 (101113) and
// empties `wide`.
[[nodiscard]] XErr xtextToWide(std::string_view text, std::wstring& wide);

// UTF-16 to UTF-8; a lone surrogate becomes U+FFFD.
std::string xtextToUtf8(std::wstring_view wide);

#endif
