#ifndef BRIDGE_BRIDGEAPPS_H
#define BRIDGE_BRIDGEAPPS_H

#include <optional>
#include <string>

#include "appc/Appc.h"

// What the export of the same name does.
namespace internal {

// The apps of an instance as an indented JSON array, in byte order of their packages; nothing when
// its app cache cannot be opened. Opens the cache anew, in place of the instance before.
std::optional<std::string> bridgeGetInstalledApps(AppcStore& store, const std::string& instance);

}  // namespace internal

#endif
