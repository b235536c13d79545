#ifndef KIT_STATE_H
#define KIT_STATE_H

#include <filesystem>

#include "Snapshot.h"

// The state that a run can change: in the registry the product's key, the keys of tests and
// bindings and the crash handlers; the kit's files; and the folders of temporary files.
Snapshot stateNow(const std::filesystem::path& kit, const std::filesystem::path& temporary);

// Windows' own reports on processes that ended with an error, which the kit does not remove.
Snapshot errorReportsNow();

// Removes the keys of tests and bindings below HKEY_CURRENT_USER that `before` does not have.
void removeTestKeys(const Snapshot& before);

#endif
