#ifndef BRIDGE_BRIDGEAPPS_H
#define BRIDGE_BRIDGEAPPS_H

#include <optional>
#include <string>

#include "appc/Appc.h"

// Implements the export of the same name.
namespace internal {

// The apps of an instance as an indented JSON array, in byte order of their packages; none when its
// app cache cannot be opened. Reopens the cache, replacing the previous instance's.
std::optional<std::string> bridgeGetInstalledApps(AppcStore& store, const std::string& instance);

}  // namespace internal

#endif
