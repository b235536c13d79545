// The system's calls. kernel32.dll exports all of them since Windows 7, which is Qt's minimum, so
// none is looked up at run time.
#include "utl/UtlProcessCalls.h"

#include <cstddef>

#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <psapi.h>

// Declared here because the toolchain's <werapi.h> does not compile.
extern "C" __declspec(dllimport) HRESULT WINAPI
    WerRegisterRuntimeExceptionModule(PCWSTR outOfProcessCallbackDll, PVOID context);

namespace {

constexpr std::size_t kMaxProcesses = 1024;
constexpr std::size_t kMaxPath = 32768;  // the longest path of Windows and its NUL
constexpr DWORD kAccess = PROCESS_QUERY_INFORMATION | PROCESS_SET_QUOTA | PROCESS_VM_READ;

bool enumerate(std::vector<std::uint32_t>& ids) {
    DWORD buffer[kMaxProcesses];
    DWORD used = 0;
    if (!::EnumProcesses(buffer, sizeof buffer, &used)) return false;
    ids.assign(buffer, buffer + used / sizeof buffer[0]);
    return true;
}

void* open(std::uint32_t id) { return ::OpenProcess(kAccess, /*bInheritHandle=*/FALSE, id); }

void close(void* process) { ::CloseHandle(process); }

bool hasModules(void* process) {
    HMODULE first[1];
    DWORD needed = 0;
    return ::EnumProcessModules(process, first, sizeof first, &needed) != FALSE;
}

bool imagePath(void* process, std::wstring& path) {
    path.resize(kMaxPath);
    DWORD length = kMaxPath;
    const BOOL ok = ::QueryFullProcessImageNameW(process, /*dwFlags=*/0, path.data(), &length);
    path.resize(ok ? length : 0);
    return ok != FALSE;
}

void emptyWorkingSet(void* process) {
    constexpr SIZE_T kAsLittleAsPossible = static_cast<SIZE_T>(-1);
    ::SetProcessWorkingSetSize(process, kAsLittleAsPossible, kAsLittleAsPossible);
}

std::int32_t registerCrashModule(const std::wstring& path) {
    return static_cast<std::int32_t>(
        ::WerRegisterRuntimeExceptionModule(path.c_str(), /*context=*/nullptr));
}

}  // namespace

UtlProcessCalls& utlProcessCalls() noexcept {
    static UtlProcessCalls calls{
        enumerate, open, close, hasModules, imagePath, emptyWorkingSet, registerCrashModule};
    return calls;
}
