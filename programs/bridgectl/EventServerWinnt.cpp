#include "EventServer.h"

#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

std::wstring pipePath(const std::string& serverName) {
    std::wstring path;
    if (xtextToWide("\\\\.\\pipe\\" + serverName, path) != XERR_SUCCESS) path.clear();
    return path;
}

}  // namespace

bool isServed(const std::string& serverName) {
    // A pipe that exists and has no instance free is in use too; only a missing one is not.
    constexpr DWORD kMilliseconds = 1;
    return ::WaitNamedPipeW(pipePath(serverName).c_str(), kMilliseconds) != 0 ||
           ::GetLastError() == ERROR_SEM_TIMEOUT;
}

ServerOwner findOwner(const std::string& serverName) {
    const HANDLE pipe =
        ::CreateFileW(pipePath(serverName).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                      SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) return ServerOwner::Nobody;
    ULONG process = 0;
    const BOOL known = ::GetNamedPipeServerProcessId(pipe, &process);
    ::CloseHandle(pipe);
    if (!known) return ServerOwner::Nobody;
    return process == ::GetCurrentProcessId() ? ServerOwner::ThisProcess
                                              : ServerOwner::AnotherProcess;
}
