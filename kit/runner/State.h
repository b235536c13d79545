#ifndef KIT_STATE_H
#define KIT_STATE_H

#include <filesystem>

#include "Snapshot.h"

// What a run could change, as it is now: the product's key and the tests' own in the registry, the
// handlers of crashes there, the files of the kit, and the folders where programs leave what is
// temporary.
Snapshot stateNow(const std::filesystem::path& kit, const std::filesystem::path& temporary);

// The reports that Windows itself keeps of processes that ended with an error. They are its own,
// and stay.
Snapshot errorReportsNow();

// Removes the tests' keys below HKEY_CURRENT_USER: all of them, or those that `before` lacks.
void removeTestKeys(const Snapshot& before);

#endif
