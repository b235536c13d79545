#ifndef XPL_XSYSTEM_H
#define XPL_XSYSTEM_H

#include <cstdint>

// Process-wide services.

std::int32_t xsystemProcessId() noexcept;
std::uint32_t xsystemThreadId() noexcept;

// Sets the C runtime's locale to the user's language with UTF-8 as its encoding. Decimal commas are
// possible from then on, so data must never pass through locale-dependent functions.
void xsystemUseUtf8();

// Breaks into the debugger. Without one, or when the debugger continues, the process ends with
// status 0x80000003 (STATUS_BREAKPOINT). A host's runtime that handles the exception first may end
// the process with another status.
[[noreturn]] void xsystemDebugBreak() noexcept;

// Whether the process is ending: its other threads have been terminated, wherever they were.
bool xsystemProcessEnds() noexcept;

// Whether this library is being unloaded while its process continues. Call it only while static
// objects are destroyed.
bool xsystemIsUnloading() noexcept;

#endif
