#ifndef UTL_UTLPROCESS_H
#define UTL_UTLPROCESS_H

#include <cstdint>

#include "xpl/Xerr.h"

// Empties the working set of every running process of the product: those whose image path contains
// the install folder, case-sensitively, including this process. Skips processes that cannot be
// opened. Returns 0, or -1 after logging that the processes cannot be listed. A missing install
// folder is fatal (utlGetInstallDir).
[[nodiscard]] XErr utlTrimMemoryAllProcs();

// Registers the product's crash-reporting module, "QX-WerHandler.dll" in the install folder, with
// Windows Error Reporting for this process. Windows loads the module only when the process crashes.
// Returns the call's HRESULT, 0 when registered. A missing install folder is fatal
// (utlGetInstallDir).
std::int32_t utlRegisterCrashHandler();

#endif
