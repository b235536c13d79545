// Child processes over CreateProcessW and ShellExecuteExW.
#include <cstdlib>
#include <mutex>
#include <utility>

#include "xpl/XinheritGate.h"
#include "xpl/Xlog.h"
#include "xpl/Xproc.h"
#include "xpl/XprocCalls.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <shellapi.h>

namespace {

// The tag is not XPROC: filters of the product's log depend on it.
constexpr XlogModule kLog{XlogTag::XSTR, "Source/xpl/XprocWinnt"};

STARTUPINFOW startupInfo() {
    STARTUPINFOW info{};
    info.cb = sizeof info;
    // Without STARTF_USESTDHANDLES these have no effect.
    info.hStdInput = ::GetStdHandle(STD_INPUT_HANDLE);
    info.hStdOutput = ::GetStdHandle(STD_OUTPUT_HANDLE);
    info.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
    return info;
}

unsigned long createProcess(std::wstring& commandLine, void*& process) {
    STARTUPINFOW startup = startupInfo();
    PROCESS_INFORMATION started{};
    const BOOL ok = ::CreateProcessW(
        /*lpApplicationName=*/nullptr, commandLine.data(), nullptr, nullptr,
        /*bInheritHandles=*/TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &startup, &started);
    if (!ok) return ::GetLastError();
    ::CloseHandle(started.hThread);
    process = started.hProcess;
    return ERROR_SUCCESS;
}

unsigned long shellRunAs(const std::wstring& file, const std::wstring& parameters, void*& process) {
    SHELLEXECUTEINFOW info{};
    info.cbSize = sizeof info;
    info.lpVerb = L"runas";
    info.lpFile = file.c_str();
    info.lpParameters = parameters.c_str();
    info.nShow = SW_SHOWNORMAL;
    if (!::ShellExecuteExW(&info)) return ::GetLastError();
    process = info.hProcess;  // none, since the mask does not ask for one
    return ERROR_SUCCESS;
}

// Hands a new process to the caller who wants it, or lets go of it.
void handOver(void* process, XprocHandle* handle) {
    if (process == nullptr) return;
    if (handle != nullptr) {
        *handle = process;
    } else {
        ::CloseHandle(process);
    }
}

XErr translated(unsigned long error) { return xerrFromWindows(static_cast<std::int32_t>(error)); }

}  // namespace

XprocCalls& xprocCalls() noexcept {
    static XprocCalls calls{createProcess, shellRunAs};
    return calls;
}

XErr xprocCreate(XprocHandle* handle, const XprocArguments& arguments) {
    if (arguments.empty()) return XERR_INVAL;
    const XErr err = xprocCreate_basic(handle, arguments);
    if (err != translated(XPROC_ELEVATION_REQUIRED)) return err;
    return xprocCreate_elevated_basic(handle, arguments);
}

XErr xprocCreate_basic(XprocHandle* handle, const XprocArguments& arguments) {
    std::wstring commandLine;
    if (const XErr err = xtextToWide(xprocJoin(arguments, 0), commandLine); err != XERR_SUCCESS) {
        return err;
    }
    const std::wstring shown = commandLine;  // the call may change the other one
    void* process = nullptr;
    unsigned long error = ERROR_SUCCESS;
    {
        // No file that is about to be replaced may be open while a child starts.
        const std::lock_guard<std::mutex> gate(xinheritGate());
        error = xprocCalls().create(commandLine, process);
    }
    if (error != ERROR_SUCCESS) {
        XLOG_E(kLog, "%s: CreateProcessW failed: cmdline %ls GetLastError() %d",
               "xprocCreate_basic", shown.c_str(), static_cast<int>(error));
        return translated(error);
    }
    handOver(process, handle);
    return XERR_SUCCESS;
}

XErr xprocCreate_elevated_basic(XprocHandle* handle, const XprocArguments& arguments) {
    std::wstring file;
    std::wstring parameters;
    if (arguments.empty()) return XERR_INVAL;
    if (const XErr err = xtextToWide(arguments[0], file); err != XERR_SUCCESS) return err;
    if (const XErr err = xtextToWide(xprocJoin(arguments, 1), parameters); err != XERR_SUCCESS) {
        return err;
    }
    void* process = nullptr;
    const unsigned long error = xprocCalls().runAs(file, parameters, process);
    if (error != ERROR_SUCCESS) {
        XLOG_E(kLog, "%s: ShellExecuteEx failed: filename %ls parameters %ls GetLastError() %d",
               "xprocCreate_elevated_basic", file.c_str(), parameters.c_str(),
               static_cast<int>(error));
        return translated(error);
    }
    handOver(process, handle);
    return XERR_SUCCESS;
}

XErr xprocWait(XprocHandle handle, std::uint32_t* exitCode) {
    if (::WaitForSingleObject(handle, INFINITE) == WAIT_FAILED) {
        const XErr err = xerrLast();
        XLOG_E(kLog, "xprocWait failed with %d %s", err, xerrName(err).c_str());
        return err;
    }
    DWORD code = 0;
    if (exitCode != nullptr) {
        if (::GetExitCodeProcess(handle, &code)) {
            *exitCode = code;
        } else {
            const XErr err = xerrLast();
            XLOG_E(kLog, "xprocWait  GetExitCodeProcess failed with %d %s", err,
                   xerrName(err).c_str());
        }
    }
    ::CloseHandle(handle);
    return XERR_SUCCESS;
}

XErr xprocKill(XprocHandle handle, std::uint32_t exitCode) {
    if (!::TerminateProcess(handle, exitCode)) {
        const XErr err = xerrLast();
        XLOG_E(kLog, "%s: TerminateProcess failed err=%d [%s]", "xprocKill", err,
               xerrName(err).c_str());
    }
    return XERR_SUCCESS;
}

XErr xprocSetEnvironment(const std::string& name, const std::string& value) {
    return ::_putenv((name + "=" + value).c_str()) == 0 ? static_cast<XErr>(XERR_SUCCESS)
                                                        : xerrLast();
}
