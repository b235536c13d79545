#ifndef XPL_XWINDOWSLEAN_H
#define XPL_XWINDOWSLEAN_H

// Include this instead of <windows.h>: lean, without the min and max macros. Only for .cpp files
// that call Windows; headers use no Windows types.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <cstdint>

#include "xpl/Xerr.h"

// Status of the system call that just failed on this thread.
inline XErr xerrLast() noexcept {
    return xerrFromWindows(static_cast<std::int32_t>(::GetLastError()));
}

#endif
