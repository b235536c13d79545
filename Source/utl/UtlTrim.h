#ifndef UTL_UTLTRIM_H
#define UTL_UTLTRIM_H

#include "xpl/Xerr.h"

// Empties the working set of every running process of the product: of those whose image path has
// the install folder in it, in the same letter case, this process among them. Processes that cannot
// be opened are skipped. 0, or -1 after a log line when the processes cannot be listed. A missing
// install folder is fatal (utlGetInstallDir).
[[nodiscard]] XErr utlTrimMemoryAllProcs();

#endif
