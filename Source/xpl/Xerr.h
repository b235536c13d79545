#ifndef XPL_XERR_H
#define XPL_XERR_H

#include <cstdint>
#include <string>
#include <vector>

#include "xpl/XerrTable.h"

// Status of a fallible operation: XERR_SUCCESS, XERR_FAILURE, a number of Linux's errno under its
// XERR_ name, or XERR_WINDOWS_BASE plus a Windows error that has no equivalent.
using XErr = std::int32_t;

#define XERR_CONSTANT(code, name) constexpr XErr XERR_##name = (code);
XERR_CODES(XERR_CONSTANT)
#undef XERR_CONSTANT

// The same codes for a switch that has to know all of them: one that is missing does not build.
enum class XErrCode : XErr {
#define XERR_ENUMERATOR(code, name) XERR_##name = (code),
    XERR_CODES(XERR_ENUMERATOR)
#undef XERR_ENUMERATOR
};

constexpr XErr XERR_WINDOWS_BASE = 100000;

// Status for a Windows error, which the caller reads in the statement that failed. Windows error 0
// has no equivalent either: it gives 100000, since a reported failure is never a success.
XErr xerrFromWindows(std::int32_t windowsError) noexcept;

// Name of a status for log lines: "XERR_NOENT", or "NOTDEFINED: 134" for one without a name.
std::string xerrName(XErr code);

// Every status that has a name, in ascending order.
std::vector<XErr> xerrCodes();

// The Windows errors of the table that arrive as this status. Several can: a caller that needs the
// system's words for a failure keeps the Windows error.
std::vector<std::int32_t> xerrWindowsErrors(XErr code);

// Whether a status means that another process holds the file, or has locked its bytes (Windows
// errors 32 and 33): nothing is wrong with the file itself. Access denied (5) can mean this too,
// but shares its status with other errors.
constexpr bool xerrIsHeld(XErr code) noexcept {
    return code == XERR_WINDOWS_BASE + 32 || code == XERR_WINDOWS_BASE + 33;
}

#endif
