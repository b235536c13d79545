// System calls for child processes: CreateProcessW, ShellExecuteExW and related ones.
#include "xpl/Xproc.h"

#include "xpl/Xlog.h"
#include "xpl/XprocCalls.h"
#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <shellapi.h>

namespace {

STARTUPINFOW startupInfo() {
    STARTUPINFOW info{};
    info.cb = sizeof info;
    // Without STARTF_USESTDHANDLES these have no effect.
    info.hStdInput = ::GetStdHandle(STD_INPUT_HANDLE);
    info.hStdOutput = ::GetStdHandle(STD_OUTPUT_HANDLE);
    info.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
    return info;
}

bool createProcess(std::wstring& commandLine, XprocPtr& process, unsigned long& error) {
    STARTUPINFOW startup = startupInfo();
    PROCESS_INFORMATION started{};
    const BOOL ok = ::CreateProcessW(
        /*lpApplicationName=*/nullptr, commandLine.data(), nullptr, nullptr,
        /*bInheritHandles=*/TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &startup, &started);
    error = ::GetLastError();
    if (!ok) return false;
    process.reset(started.hProcess);
    const XprocPtr thread(started.hThread);  // closed at once
    return true;
}

bool shellRunAs(const std::wstring& file, const std::wstring& parameters, XprocPtr& process,
                unsigned long& error) {
    SHELLEXECUTEINFOW info{};
    info.cbSize = sizeof info;
    info.lpVerb = L"runas";
    info.lpFile = file.c_str();
    info.lpParameters = parameters.c_str();
    info.nShow = SW_SHOWNORMAL;
    const BOOL ok = ::ShellExecuteExW(&info);
    error = ::GetLastError();
    if (!ok) return false;
    process.reset(info.hProcess);  // null: the mask does not request a handle
    return true;
}

}  // namespace

XprocCalls& xprocCalls() noexcept {
    static XprocCalls calls{createProcess, shellRunAs};
    return calls;
}

void XprocClose::operator()(void* process) const noexcept { ::CloseHandle(process); }

XErr xprocWait(XprocHandle handle, std::uint32_t* exitCode) {
    if (::WaitForSingleObject(handle, INFINITE) == WAIT_FAILED) {
        const XErr err = xerrLast();
        XLOG_E(kXprocLog, "xprocWait failed with %d %s", err, xerrName(err).c_str());
        return err;
    }
    const XprocPtr ended(handle);
    DWORD code = 0;
    if (exitCode != nullptr) {
        if (::GetExitCodeProcess(handle, &code)) {
            *exitCode = code;
        } else {
            const XErr err = xerrLast();
            XLOG_E(kXprocLog, "xprocWait  GetExitCodeProcess failed with %d %s", err,
                   xerrName(err).c_str());
        }
    }
    return XERR_SUCCESS;
}

XErr xprocKill(XprocHandle handle, std::uint32_t exitCode) {
    if (!::TerminateProcess(handle, exitCode)) {
        const XErr err = xerrLast();
        XLOG_E(kXprocLog, "%s: TerminateProcess failed err=%d [%s]", "xprocKill", err,
               xerrName(err).c_str());
    }
    return XERR_SUCCESS;
}

XErr xprocSetEnvironment(const std::string& name, const std::string& value) {
    return ::_putenv((name + "=" + value).c_str()) == 0 ? XERR_SUCCESS : xerrLast();
}
