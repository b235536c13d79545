#ifndef BRIDGE_BRIDGESHUTDOWN_H
#define BRIDGE_BRIDGESHUTDOWN_H

#include <string>

#include "xpl/Xerr.h"

// What the exports of the same names do.
namespace internal {

// 0 when the request was handed to the connection, arrived or not; else the preparation's error.
[[nodiscard]] XErr bridgePlrShutdown(const std::string& instance, bool flag);

// Asks the manager and then the player of every known instance; failures are only logged.
void bridgeShutdown();

}  // namespace internal

#endif
