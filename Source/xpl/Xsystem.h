#ifndef XPL_XSYSTEM_H
#define XPL_XSYSTEM_H

#include <cstdint>

// What the platform layer asks of the process it lives in.

std::int32_t xsystemProcessId() noexcept;
std::uint32_t xsystemThreadId() noexcept;

// Makes UTF-8 the encoding of every narrow text in the C runtime, and the user's language its
// locale: decimal commas are possible from here on, so data never goes through locale functions.
void xsystemUseUtf8();

// Breaks into the debugger. The process ends with status 0x80000003 (STATUS_BREAKPOINT): at once
// when there is no debugger, else when the debugger lets it go on. A host's runtime that takes the
// break first may end it with another status.
[[noreturn]] void xsystemDebugBreak() noexcept;

// Whether the process is being taken down: its other threads are gone, wherever they were.
bool xsystemProcessEnds() noexcept;

// Whether this code is in a library that is being unloaded while its process goes on. Only to be
// asked when objects are destroyed at the end.
bool xsystemIsUnloading() noexcept;

#endif
