// Process-wide services of Windows and of the Universal C Runtime.
#include <clocale>

#include "xpl/Xsystem.h"
#include "xpl/XwindowsLean.h"

// Last: its _M constants clash with names inside the C++ library.
#include <mbctype.h>

namespace {

constexpr int kUtf8CodePage = 65001;
constexpr UINT kStatusBreakpoint = 0x80000003;

// Returns `unknown` where the system cannot tell.
bool processEnds(bool unknown) {
    using Ask = BOOLEAN(NTAPI*)();
    const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    const auto ask = reinterpret_cast<Ask>(
        reinterpret_cast<void*>(::GetProcAddress(ntdll, "RtlDllShutdownInProgress")));
    return ask == nullptr ? unknown : ask() != FALSE;
}

bool isLibrary() {
    static const char here = 0;
    HMODULE self = nullptr;
    return ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                    GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                reinterpret_cast<LPCWSTR>(&here), &self) &&
           self != ::GetModuleHandleW(nullptr);
}

}  // namespace

std::int32_t xsystemProcessId() noexcept {
    return static_cast<std::int32_t>(::GetCurrentProcessId());
}

std::uint32_t xsystemThreadId() noexcept { return ::GetCurrentThreadId(); }

void xsystemUseUtf8() {
    std::setlocale(LC_ALL, ".UTF8");
    _setmbcp(kUtf8CodePage);
}

void xsystemDebugBreak() noexcept {
    ::DebugBreak();
    ::TerminateProcess(::GetCurrentProcess(), kStatusBreakpoint);
    for (;;) ::Sleep(INFINITE);  // the process is about to end
}

bool xsystemProcessEnds() noexcept { return processEnds(/*unknown=*/false); }

// When in doubt, returns false: releasing too little is safe.
bool xsystemIsUnloading() noexcept { return isLibrary() && !processEnds(/*unknown=*/true); }
