// Process-wide services of Windows and of the Universal C Runtime.
#include <clocale>

#include "xpl/Xsystem.h"
#include "xpl/XwindowsLean.h"

// Last: its _M constants clash with names inside the C++ library.
#include <mbctype.h>

namespace {

constexpr int kUtf8CodePage = 65001;
constexpr UINT kStatusBreakpoint = 0x80000003;

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
    for (;;) ::Sleep(INFINITE);  // the end of the process is on its way
}
