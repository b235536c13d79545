#ifndef UTL_UTLCOPY_H
#define UTL_UTLCOPY_H

#include <string>

#include "xpl/Xerr.h"

// Copies a folder's content into another folder, with all sub-folders but without hidden files and
// folders. An existing sub-folder of `destination` is deleted first. An existing file is kept and
// counts as a failure. A missing `destination` is created only if `source` has sub-folders. It must
// not be inside `source`.
//
// Returns -1 when a file directly inside `source` was not copied, else 0, even when `source` does
// not exist. Logs all failures and continues. Paths are UTF-8. Takes no lock: the caller holds what
// guards the folders.
[[nodiscard]] XErr utlCopyRecursive(const std::string& source, const std::string& destination);

#endif
