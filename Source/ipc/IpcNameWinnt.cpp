#include "ipc/IpcName.h"

#include "xpl/Xerr.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

bool ipcNameIsServed(const std::string& serverName) {
    std::wstring path;
    if (xtextToWide("\\\\.\\pipe\\" + serverName, path) != XERR_SUCCESS) return false;
    // A pipe without a free instance is also in use.
    constexpr DWORD kMilliseconds = 1;
    return ::WaitNamedPipeW(path.c_str(), kMilliseconds) != 0 ||
           ::GetLastError() == ERROR_SEM_TIMEOUT;
}
