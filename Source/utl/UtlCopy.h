#ifndef UTL_UTLCOPY_H
#define UTL_UTLCOPY_H

#include <string>

#include "xpl/Xerr.h"

// Copies the content of one folder into another, with all sub-folders; hidden files and folders are
// left out. A sub-folder that `destination` has already is deleted and copied afresh; a file that
// it has already stays as it is, and counts as failed. `destination` itself is not created for
// files, and must not lie inside `source`.
//
// -1 when a file directly inside `source` was not copied, else 0, also when `source` does not
// exist. Failures are logged, those in sub-folders too, and the copy goes on. Paths are UTF-8.
// Locks nothing: the caller holds whatever guards the folders.
[[nodiscard]] XErr utlCopyRecursive(const std::string& source, const std::string& destination);

#endif
