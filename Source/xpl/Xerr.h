#ifndef XPL_XERR_H
#define XPL_XERR_H

#include <cstdint>
#include <string>
#include <vector>

#include "xpl/XerrTable.h"

// Status of an operation: XERR_SUCCESS, XERR_FAILURE, a Linux errno value under its XERR_ name, or
// XERR_WINDOWS_BASE plus a Windows error without an equivalent.
using XErr = std::int32_t;

#define XERR_CONSTANT(code, name) constexpr XErr XERR_##name = (code);
XERR_CODES(XERR_CONSTANT)
#undef XERR_CONSTANT

// The same codes as an enum, so that the compiler checks that a switch covers all of them.
enum class XErrCode : XErr {
#define XERR_ENUMERATOR(code, name) XERR_##name = (code),
    XERR_CODES(XERR_ENUMERATOR)
#undef XERR_ENUMERATOR
};

constexpr XErr XERR_WINDOWS_BASE = 100000;

// Status of a Windows error. 100000 for Windows error 0, since a failed call must not yield
// success.
XErr xerrFromWindows(std::int32_t windowsError) noexcept;

// Name of a status for log lines: "XERR_NOENT", or "NOTDEFINED: 134" if it has none.
std::string xerrName(XErr code);

// Every status that has a name, in ascending order.
std::vector<XErr> xerrCodes();

// The Windows errors that translate to this status. There may be several: keep the Windows error
// where the system's message is needed.
std::vector<std::int32_t> xerrWindowsErrors(XErr code);

// Whether a status is a sharing or lock violation (Windows errors 32 and 33): another process uses
// the file. Access denied (5) can mean the same, but shares its status with other errors.
constexpr bool xerrIsHeld(XErr code) noexcept {
    return code == XERR_WINDOWS_BASE + 32 || code == XERR_WINDOWS_BASE + 33;
}

#endif
