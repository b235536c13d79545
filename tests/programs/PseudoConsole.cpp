// The headers declare pseudo consoles for Windows 10, version 1809, and later.
#define NTDDI_VERSION 0x0A000006

#include "PseudoConsole.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <thread>

#include "support/ChildProcess.h"
#include "support/WindowsForTests.h"

namespace {

constexpr COORD kWindow{100, 40};
constexpr COORD kBuffer{160, 300};  // large enough to prevent scrolling
constexpr std::chrono::seconds kLimit{60};
constexpr std::chrono::milliseconds kBetweenLooks{10};

void require(bool isDone, const char* what) {
    if (isDone) return;
    throw std::runtime_error(std::string(what) + ": error " + std::to_string(::GetLastError()));
}

BOOL WINAPI passOver(DWORD) { return TRUE; }

HANDLE openConsole(const wchar_t* name) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const HANDLE handle =
        ::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                      &inheritable, OPEN_EXISTING, 0, nullptr);
    require(handle != INVALID_HANDLE_VALUE, "no console");
    return handle;
}

std::string utf8(const std::wstring& text) {
    std::string bytes(text.size() * 3, '\0');
    const int size =
        ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                              static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

std::string readLine(HANDLE screen, SHORT row) {
    CHAR_INFO cells[kBuffer.X];
    SMALL_RECT part{0, row, kBuffer.X - 1, row};
    require(::ReadConsoleOutputW(screen, cells, {kBuffer.X, 1}, {0, 0}, &part), "no screen");
    std::wstring text;
    for (const CHAR_INFO& cell : cells) {
        if ((cell.Attributes & COMMON_LVB_TRAILING_BYTE) == 0) text += cell.Char.UnicodeChar;
    }
    text.erase(text.find_last_not_of(L" \0") + 1);
    return utf8(text) + "\n";
}

// Starts a program with the handles of `startup`. Inherits no others unless `inherits` is set.
HANDLE startProcess(const std::string& line, STARTUPINFOW& startup, DWORD flags, bool inherits) {
    std::wstring wide = wideForTests(line);
    PROCESS_INFORMATION process{};
    require(::CreateProcessW(nullptr, wide.data(), nullptr, nullptr, inherits, flags, nullptr,
                             nullptr, &startup, &process),
            "no process");
    ::CloseHandle(process.hThread);
    return process.hProcess;
}

}  // namespace

struct PseudoConsole::State {
    HPCON console = nullptr;
    HANDLE drawn = nullptr;  // output for a terminal; read so that writers do not block
    std::thread reader;
    HANDLE keeper = nullptr;
    HANDLE input = nullptr;
    HANDLE screen = nullptr;
    HANDLE program = nullptr;

    void create();
    void keep();
    void attach(unsigned codePage);
};

void PseudoConsole::State::create() {
    HANDLE keys = nullptr;
    HANDLE noKeys = nullptr;
    HANDLE drawing = nullptr;
    require(::CreatePipe(&keys, &noKeys, nullptr, 0), "no pipe");
    require(::CreatePipe(&drawn, &drawing, nullptr, 0), "no pipe");
    require(::CreatePseudoConsole(kWindow, keys, drawing, 0, &console) == S_OK, "no console");
    ::CloseHandle(keys);
    ::CloseHandle(drawing);
    reader = std::thread([this] {
        char bytes[4096];
        for (DWORD size = 0; ::ReadFile(drawn, bytes, sizeof bytes, &size, nullptr);) continue;
    });
}

void PseudoConsole::State::keep() {
    SIZE_T size = 0;
    ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    std::string memory(size, '\0');
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data());
    require(::InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size) &&
                ::UpdateProcThreadAttribute(startup.lpAttributeList, 0,
                                            PROC_THREAD_ATTRIBUTE_PSEUDOCONSOLE, console,
                                            sizeof console, nullptr, nullptr),
            "no attributes");
    keeper = startProcess(builtProgram("console_keeper.exe"), startup.StartupInfo,
                          EXTENDED_STARTUPINFO_PRESENT, /*inherits=*/false);
}

void PseudoConsole::State::attach(unsigned codePage) {
    const auto end = std::chrono::steady_clock::now() + kLimit;
    ::FreeConsole();
    // A program that has just started may not have its console yet.
    while (!::AttachConsole(::GetProcessId(keeper))) {
        require(std::chrono::steady_clock::now() < end, "no console to attach to");
        std::this_thread::sleep_for(kBetweenLooks);
    }
    ::SetConsoleCtrlHandler(passOver, TRUE);
    input = openConsole(L"CONIN$");
    screen = openConsole(L"CONOUT$");
    require(::SetConsoleScreenBufferSize(screen, kBuffer), "no larger screen");
    require(::SetConsoleOutputCP(codePage) && ::SetConsoleCP(codePage), "no code page");
}

PseudoConsole::PseudoConsole(unsigned codePage) : state_(std::make_unique<State>()) {
    state_->create();
    state_->keep();
    state_->attach(codePage);
}

PseudoConsole::~PseudoConsole() {
    if (state_->program != nullptr) ::TerminateProcess(state_->program, 99);
    ::CloseHandle(state_->input);
    ::CloseHandle(state_->screen);
    ::SetConsoleCtrlHandler(passOver, FALSE);
    ::FreeConsole();
    ::TerminateProcess(state_->keeper, 0);
    ::WaitForSingleObject(state_->keeper, INFINITE);
    ::CloseHandle(state_->keeper);
    ::ClosePseudoConsole(state_->console);
    state_->reader.join();
    ::CloseHandle(state_->drawn);
}

void PseudoConsole::start(const std::string& program, const std::vector<std::string>& arguments) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = state_->input;
    startup.hStdOutput = state_->screen;
    startup.hStdError = state_->screen;
    std::string line = "\"" + program + "\"";
    for (const std::string& argument : arguments) line += " \"" + argument + "\"";
    state_->program = startProcess(line, startup, 0, /*inherits=*/true);
}

std::uint32_t PseudoConsole::finish() {
    constexpr DWORD kMilliseconds = 60'000;
    if (::WaitForSingleObject(state_->program, kMilliseconds) != WAIT_OBJECT_0) {
        ADD_FAILURE() << "the program does not end; the screen is\n" << screen();
        ::TerminateProcess(state_->program, 99);
        ::WaitForSingleObject(state_->program, INFINITE);
    }
    DWORD status = 0;
    ::GetExitCodeProcess(state_->program, &status);
    ::CloseHandle(state_->program);
    state_->program = nullptr;
    return status;
}

std::string PseudoConsole::screen() const {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    require(::GetConsoleScreenBufferInfo(state_->screen, &info), "no screen");
    std::string text;
    for (SHORT row = 0; row <= info.dwCursorPosition.Y; ++row)
        text += readLine(state_->screen, row);
    while (text.size() > 1 && text[text.size() - 2] == '\n') text.pop_back();
    return text == "\n" ? "" : text;
}

std::string PseudoConsole::screenWith(const std::string& text) const {
    const auto end = std::chrono::steady_clock::now() + kLimit;
    for (;;) {
        std::string shown = screen();
        if (shown.find(text) != std::string::npos) return shown;
        if (std::chrono::steady_clock::now() >= end) {
            ADD_FAILURE() << "the screen does not get " << text << "; it is\n" << shown;
            return shown;
        }
        std::this_thread::sleep_for(kBetweenLooks);
    }
}

bool PseudoConsole::followsSequences() const {
    constexpr wchar_t kSequence[] = L"\x1b[0m";
    DWORD mode = 0;
    DWORD count = 0;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    ::GetConsoleMode(state_->screen, &mode);
    ::SetConsoleMode(state_->screen, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    ::WriteConsoleW(state_->screen, kSequence, 4, &count, nullptr);
    ::GetConsoleScreenBufferInfo(state_->screen, &info);
    ::SetConsoleMode(state_->screen, mode);
    ::FillConsoleOutputCharacterW(state_->screen, L' ', 4, {0, 0}, &count);
    ::SetConsoleCursorPosition(state_->screen, {0, 0});
    return info.dwCursorPosition.X == 0;
}

void PseudoConsole::pressCtrlC() const {
    require(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, /*dwProcessGroupId=*/0), "no Ctrl+C");
}
