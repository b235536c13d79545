// The console and the command line of Windows.
#include "shared/Console.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>

#include "shared/TextStyle.h"
#include "xpl/Xerr.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <shellapi.h>

namespace {

struct FreeArguments {
    void operator()(LPWSTR* memory) const noexcept { ::LocalFree(memory); }
};

bool printWide(HANDLE console, const std::wstring& text) {
    DWORD written = 0;
    return ::WriteConsoleW(console, text.data(), static_cast<DWORD>(text.size()), &written,
                           nullptr) &&
           written == text.size();
}

bool printBytes(HANDLE handle, std::string_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        if (!::WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) ||
            written == 0) {
            return false;
        }
        text.remove_prefix(written);
    }
    return true;
}

// The original standard output after takeStandardOutput(), or null.
std::atomic<HANDLE> takenOutput{nullptr};

HANDLE handleOf(DWORD stream) {
    const HANDLE taken = stream == STD_OUTPUT_HANDLE ? takenOutput.load() : nullptr;
    return taken == nullptr ? ::GetStdHandle(stream) : taken;
}

// Redirects descriptor 1 of the C runtime to standard error, or to NUL. The libraries of this
// process print through the same runtime.
void redirectDescriptor() {
    if (::_dup2(2, 1) == 0) return;
    const int nowhere = ::_open("NUL", _O_WRONLY | _O_BINARY);
    if (nowhere >= 0 && ::_dup2(nowhere, 1) == 0) ::_close(nowhere);
}

bool print(DWORD stream, std::string_view text) {
    const HANDLE handle = handleOf(stream);
    DWORD mode = 0;
    std::wstring wide;
    const bool isConsole = ::GetConsoleMode(handle, &mode) != 0;
    return isConsole && xtextToWide(text, wide) == XERR_SUCCESS ? printWide(handle, wide)
                                                                : printBytes(handle, text);
}

// Whether a handle is a terminal. Enables escape sequences if it is.
bool takesSequences(HANDLE handle) {
    DWORD mode = 0;
    return ::GetConsoleMode(handle, &mode) != 0 &&
           ::SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

TextStyle styleOf(DWORD stream) {
    return TextStyle(takesSequences(handleOf(stream)), std::getenv("NO_COLOR"));
}

std::atomic<void (*)()> consoleEnd{nullptr};

BOOL WINAPI onConsoleEvent(DWORD event) {
    void (*const end)() = consoleEnd.exchange(nullptr);
    if (end == nullptr) return FALSE;
    end();
    // The system ends the process when this returns, but main() is about to return.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
    return TRUE;
}

}  // namespace

void takeStandardOutput() {
    HANDLE copy = nullptr;
    const HANDLE process = ::GetCurrentProcess();
    if (!::DuplicateHandle(process, ::GetStdHandle(STD_OUTPUT_HANDLE), process, &copy, 0,
                           /*bInheritHandle=*/FALSE, DUPLICATE_SAME_ACCESS)) {
        return;
    }
    takenOutput = copy;
    redirectDescriptor();
    const auto redirected = reinterpret_cast<HANDLE>(::_get_osfhandle(1));
    ::SetHandleInformation(redirected, HANDLE_FLAG_INHERIT, 0);
    ::SetStdHandle(STD_OUTPUT_HANDLE, redirected);
}

bool printOut(std::string_view text) { return print(STD_OUTPUT_HANDLE, text); }

void printError(std::string_view text) {
    const std::string prefix = errorStyle().error(std::string(programName) + ":");
    print(STD_ERROR_HANDLE, prefix + " " + std::string(text) + "\n");
}

void printNotice(std::string_view text) {
    print(STD_ERROR_HANDLE, std::string(programName).append(": ").append(text).append("\n"));
}

std::optional<ScreenSize> outputSize() {
    const HANDLE handle = handleOf(STD_OUTPUT_HANDLE);
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!takesSequences(handle) || !::GetConsoleScreenBufferInfo(handle, &info)) {
        return std::nullopt;
    }
    const SMALL_RECT& window = info.srWindow;
    return ScreenSize{static_cast<std::size_t>(std::max(window.Right - window.Left + 1, 2)),
                      static_cast<std::size_t>(std::max(window.Bottom - window.Top + 1, 1))};
}

TextStyle outputStyle() { return styleOf(STD_OUTPUT_HANDLE); }

TextStyle errorStyle() { return styleOf(STD_ERROR_HANDLE); }

void onConsoleEnd(void (*end)()) {
    consoleEnd = end;
    ::SetConsoleCtrlHandler(onConsoleEvent, TRUE);
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
