#ifndef BRIDGE_BRIDGECONF_H
#define BRIDGE_BRIDGECONF_H

#include <string>

#include "conf/Conf.h"

// Configuration exports that do more than call the store once.

// The instances of a store as an indented JSON array, in order of their names.
std::string bridgeInstancesJson(ConfStore& store);

// Implements the export of the same name.
namespace internal {

// Logs the path, then calls confCommitToFile.
[[nodiscard]] XErr bridgeConfCommitToFile(ConfStore& store, const std::string& path);

}  // namespace internal

#endif
