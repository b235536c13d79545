#ifndef BRIDGE_BRIDGECONF_H
#define BRIDGE_BRIDGECONF_H

#include <string>

#include "conf/Conf.h"

// What the exports on the configuration do besides one call of the store.

// The instances of a store as an indented JSON array, in order of their names.
std::string bridgeInstancesJson(ConfStore& store);

// What the export of the same name does.
namespace internal {

// confCommitToFile, whose path is logged first.
[[nodiscard]] XErr bridgeConfCommitToFile(ConfStore& store, const std::string& path);

}  // namespace internal

#endif
