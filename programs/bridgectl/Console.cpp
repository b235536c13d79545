// The console and the command line of Windows.
#include "Console.h"

#include <memory>

#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <shellapi.h>

namespace {

struct FreeArguments {
    void operator()(LPWSTR* memory) const noexcept { ::LocalFree(memory); }
};

void print(DWORD stream, std::string_view text) {
    const HANDLE handle = ::GetStdHandle(stream);
    DWORD mode = 0;
    DWORD written = 0;
    std::wstring wide;
    if (::GetConsoleMode(handle, &mode) && xtextToWide(text, wide) == XERR_SUCCESS) {
        ::WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
        return;
    }
    ::WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

}  // namespace

void printOut(std::string_view text) { print(STD_OUTPUT_HANDLE, text); }

void printError(std::string_view text) {
    print(STD_ERROR_HANDLE, std::string(programName).append(": ").append(text).append("\n"));
}

void keepStandardHandles() {
    for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        ::SetHandleInformation(::GetStdHandle(stream), HANDLE_FLAG_INHERIT, 0);
    }
}

std::vector<std::string> commandLineArguments() {
    int count = 0;
    const std::unique_ptr<LPWSTR[], FreeArguments> wide(
        ::CommandLineToArgvW(::GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(xtextToUtf8(wide[static_cast<std::size_t>(i)]));
    return arguments;
}
