// Conversion between UTF-8 and UTF-16.
#include <cstddef>
#include <limits>

#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

constexpr std::size_t kLongest = std::numeric_limits<int>::max();

}  // namespace

XErr xtextToWide(std::string_view text, std::wstring& wide) {
    wide.clear();
    if (text.empty()) return XERR_SUCCESS;
    if (text.size() > kLongest) return XERR_NAMETOOLONG;
    const int length = static_cast<int>(text.size());
    const int needed =
        ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, nullptr, 0);
    if (needed == 0) return xerrLast();
    wide.resize(static_cast<std::size_t>(needed));
    ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, wide.data(), needed);
    return XERR_SUCCESS;
}

std::string xtextToUtf8(std::wstring_view wide) {
    if (wide.empty() || wide.size() > kLongest) return {};
    const int length = static_cast<int>(wide.size());
    const int needed =
        ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return {};
    std::string text(static_cast<std::size_t>(needed), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, text.data(), needed, nullptr, nullptr);
    return text;
}
