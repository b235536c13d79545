#include "CommandLineUtf8.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "support/WindowsForTests.h"
// After windows.h, which it needs.
#include <shellapi.h>

std::vector<std::string> commandLineUtf8() {
    int count = 0;
    wchar_t** const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> all;
    for (int i = 0; i < count; ++i) {
        const int size =
            ::WideCharToMultiByte(CP_UTF8, 0, words[i], -1, nullptr, 0, nullptr, nullptr);
        std::string text(static_cast<std::size_t>(size), '\0');
        ::WideCharToMultiByte(CP_UTF8, 0, words[i], -1, text.data(), size, nullptr, nullptr);
        text.pop_back();
        all.push_back(text);
    }
    ::LocalFree(words);
    return all;
}

void printBytes() {
    ::_setmode(::_fileno(stdout), _O_BINARY);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
}
