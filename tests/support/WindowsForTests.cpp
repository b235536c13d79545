#include "support/WindowsForTests.h"

#include <cstddef>

std::wstring wideForTests(std::string_view text) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    const int used =
        length == 0 ? 0
                    : ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), length);
    wide.resize(static_cast<std::size_t>(used));
    return wide;
}
