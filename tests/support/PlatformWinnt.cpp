#include "support/Platform.h"

#include <cstddef>

#include "support/WindowsForTests.h"

// Last: it needs <windows.h>.
#include <shellapi.h>

namespace fs = std::filesystem;

int ownProcessId() { return static_cast<int>(::GetCurrentProcessId()); }

std::string ownProgram() {
    wchar_t self[MAX_PATH];
    const DWORD length = ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::string path;
    for (DWORD i = 0; i < length; ++i) path += static_cast<char>(self[i]);  // the tree is ASCII
    return path;
}

std::vector<std::string> utf8Arguments(int /*argc*/, char** /*argv*/) {
    int count = 0;
    LPWSTR* const wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) {
        char text[4096];
        ::WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, text, sizeof text, nullptr, nullptr);
        arguments.emplace_back(text);
    }
    ::LocalFree(wide);
    return arguments;
}

void breakQuietly() { ::SetErrorMode(SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS); }

fs::path systemPath(const std::string& path) { return fs::u8path(path); }

std::string productPath(const fs::path& path) { return path.u8string(); }

fs::path longSystemPath(const std::string& path) { return fs::u8path("\\\\?\\" + path); }

int closeSignals() { return 1; }

std::string systemErrorText(int error) {
    wchar_t wide[512];
    DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                    nullptr, static_cast<DWORD>(error), 0, wide, 512, nullptr);
    while (length > 0 && (wide[length - 1] == L'\n' || wide[length - 1] == L'\r')) --length;
    char text[2048];
    const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(length), text,
                                            sizeof text, nullptr, nullptr);
    return {text, static_cast<std::size_t>(bytes)};
}
