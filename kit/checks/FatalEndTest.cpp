// Fatal ends: with Windows' error reporting, under a debugger and with a host's exception filter;
// and the time until the server's name is free again.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>

#include "ServedName.h"
#include "support/ChildProcess.h"
#include "support/Platform.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"
#include "xpl/Xlog.h"
#include "xpl/Xmem.h"

namespace {

constexpr XlogModule kModule{XlogTag::XMEM, "kit"};
constexpr DWORD kLimit = 240'000;

struct End {
    DWORD status = 0;
    bool isLate = false;
    ULONGLONG milliseconds = 0;  // from the start
};

std::wstring commandLine(const std::string& subprocess, const std::string& argument) {
    return wideForTests("\"" + ownProgram() + "\" --subprocess " + subprocess + " \"" + argument +
                        "\"");
}

// A process of this program, started with flags that ChildProcess lacks.
class FlaggedProcess {
 public:
    FlaggedProcess(const std::string& subprocess, const std::string& argument, DWORD flags)
        : begin_(::GetTickCount64()) {
        std::wstring line = commandLine(subprocess, argument);
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        isStarted_ = ::CreateProcessW(nullptr, line.data(), nullptr, nullptr,
                                      /*bInheritHandles=*/FALSE, flags | CREATE_NO_WINDOW, nullptr,
                                      nullptr, &startup, &process_) != 0;
    }
    ~FlaggedProcess() {
        if (!isStarted_) return;
        ::TerminateProcess(process_.hProcess, 99);
        ::CloseHandle(process_.hThread);
        ::CloseHandle(process_.hProcess);
    }
    FlaggedProcess(const FlaggedProcess&) = delete;
    FlaggedProcess& operator=(const FlaggedProcess&) = delete;

    bool isStarted() const { return isStarted_; }

    End end() const {
        End end;
        end.isLate = ::WaitForSingleObject(process_.hProcess, kLimit) != WAIT_OBJECT_0;
        ::GetExitCodeProcess(process_.hProcess, &end.status);
        end.milliseconds = ::GetTickCount64() - begin_;
        return end;
    }

 private:
    ULONGLONG begin_;
    PROCESS_INFORMATION process_{};
    bool isStarted_ = false;
};

// Debugs the process to its end, and continues after each breakpoint. Returns the number of
// breakpoints, including Windows' own at the start.
int debug(DWORD& status) {
    int breakpoints = 0;
    DEBUG_EVENT event{};
    while (::WaitForDebugEvent(&event, kLimit)) {
        DWORD answer = DBG_CONTINUE;
        if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT) {
            const DWORD code = event.u.Exception.ExceptionRecord.ExceptionCode;
            if (code == EXCEPTION_BREAKPOINT) {
                ++breakpoints;
            } else {
                answer = DBG_EXCEPTION_NOT_HANDLED;
            }
        }
        const bool isOver = event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT;
        if (isOver) status = event.u.ExitProcess.dwExitCode;
        if (event.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT) {
            ::CloseHandle(event.u.CreateProcessInfo.hFile);
        }
        if (event.dwDebugEventCode == LOAD_DLL_DEBUG_EVENT) ::CloseHandle(event.u.LoadDll.hFile);
        ::ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
        if (isOver) break;
    }
    return breakpoints;
}

std::string filterPath;

LONG WINAPI noteAndEnd(EXCEPTION_POINTERS* exception) {
    writeBytes(filterPath, std::to_string(exception->ExceptionRecord->ExceptionCode));
    return EXCEPTION_EXECUTE_HANDLER;
}

[[noreturn]] void breakWith(const std::string& log) {
    if (xlogLibInit(nullptr, log) != XERR_SUCCESS) ::ExitProcess(1);
    XLOG_FATAL(kModule);
}

void useWindowsDefault() { ::SetErrorMode(0); }

}  // namespace

SUBPROCESS(breaksWithTheDefault) {
    useWindowsDefault();
    breakWith(arguments[0] + "\\log");
}

SUBPROCESS(breaksUnderADebugger) { breakWith(arguments[0] + "\\log"); }

SUBPROCESS(breaksWithAFilter) {
    filterPath = arguments[0] + "\\filter";
    ::SetUnhandledExceptionFilter(noteAndEnd);
    breakWith(arguments[0] + "\\log");
}

SUBPROCESS(servesAndBreaks) {
    useWindowsDefault();
    const ServedName server;
    std::printf("%s\n", server.name().c_str());
    std::fflush(stdout);
    while (::GetFileAttributesW(wideForTests(arguments[0] + "\\go").c_str()) ==
           INVALID_FILE_ATTRIBUTES) {
        ::Sleep(5);
    }
    breakWith(arguments[0] + "\\log");
}

TEST(FatalEndTest, WithErrorReportingTheStatusIsTheBreaks) {
    const TempFolder folder;
    const FlaggedProcess process("breaksWithTheDefault", folder.path(), CREATE_DEFAULT_ERROR_MODE);
    ASSERT_TRUE(process.isStarted());
    const End end = process.end();
    std::printf("[figure] milliseconds %llu\n", end.milliseconds);
    ASSERT_FALSE(end.isLate);
    EXPECT_EQ(end.status, kFatalStatus);
    EXPECT_NE(folder.read("log").find("FATAL: DEBUG BREAK: "), std::string::npos);
}

TEST(FatalEndTest, UnderADebuggerTheProcessEndsAfterTheBreak) {
    const TempFolder folder;
    const FlaggedProcess process("breaksUnderADebugger", folder.path(), DEBUG_ONLY_THIS_PROCESS);
    ASSERT_TRUE(process.isStarted());
    DWORD status = 0;
    EXPECT_EQ(debug(status), 2) << "Windows' own at the start, and the library's";
    EXPECT_EQ(status, kFatalStatus);
}

TEST(FatalEndTest, TheHostsExceptionFilterSeesTheBreakAndTheStatusIsKept) {
    const TempFolder folder;
    const FlaggedProcess process("breaksWithAFilter", folder.path(), 0);
    ASSERT_TRUE(process.isStarted());
    const End end = process.end();
    ASSERT_FALSE(end.isLate);
    EXPECT_EQ(end.status, kFatalStatus);
    EXPECT_EQ(folder.read("filter"), std::to_string(kFatalStatus));
}

TEST(FatalEndTest, TheServersNameIsFreeAfterTheProcessHasEnded) {
    const TempFolder folder;
    ChildOptions options;
    options.limit = std::chrono::seconds(kLimit / 1000);
    ChildProcess child = startSubprocess("servesAndBreaks", {folder.path()}, options);
    const std::string name = child.readLine();
    ASSERT_TRUE(ipcNameIsServed(name));
    const ULONGLONG begin = ::GetTickCount64();
    folder.write("go", "");
    while (ipcNameIsServed(name) && ::GetTickCount64() - begin < kLimit) sleepMs(1);
    const ULONGLONG free = ::GetTickCount64() - begin;
    const ChildResult result = child.finish();
    const ULONGLONG gone = ::GetTickCount64() - begin;
    std::printf("[figure] name-free-after-ms %llu\n[figure] process-gone-after-ms %llu\n", free,
                gone);
    EXPECT_EQ(result.status, kFatalStatus);
    EXPECT_FALSE(ipcNameIsServed(name));
}
