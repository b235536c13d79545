#ifndef UTL_UTLPROCESS_H
#define UTL_UTLPROCESS_H

#include <cstdint>

#include "xpl/Xerr.h"

// Empties the working set of every running process of the product: of those whose image path has
// the install folder in it, in the same letter case, this process among them. Processes that cannot
// be opened are skipped. 0, or -1 after a log line when the processes cannot be listed. A missing
// install folder is fatal (utlGetInstallDir).
[[nodiscard]] XErr utlTrimMemoryAllProcs();

// Registers the product's crash-reporting module, "QX-WerHandler.dll" of the install folder, with
// Windows Error Reporting for this process. Windows looks for the module only when the process
// crashes. The call's HRESULT: 0 when registered. A missing install folder is fatal
// (utlGetInstallDir).
std::int32_t utlRegisterCrashHandler();

#endif
