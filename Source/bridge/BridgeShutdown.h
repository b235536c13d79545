#ifndef BRIDGE_BRIDGESHUTDOWN_H
#define BRIDGE_BRIDGESHUTDOWN_H

#include <string>

#include "xpl/Xerr.h"

// Implements the exports of the same names.
namespace internal {

// Returns 0 when the request was passed to the connection, even if it did not arrive; else the
// error of preparing the client.
[[nodiscard]] XErr bridgePlrShutdown(const std::string& instance, bool flag);

// Asks the manager and then the player of each known instance to shut down. Failures are only
// logged.
void bridgeShutdown();

}  // namespace internal

#endif
