#include "WindowsErrorText.h"

#include "xpl/Xtext.h"

// Last: it defines macros.
#include "xpl/XwindowsLean.h"

std::string windowsErrorText(std::uint32_t error) {
    wchar_t text[512];
    const DWORD length = ::FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
        nullptr, error, 0, text, 512, nullptr);
    const std::string line = xtextToUtf8(std::wstring(text, length));
    return line.substr(0, line.find_last_not_of(' ') + 1);
}
