#ifndef BRIDGE_BRIDGESHUTDOWN_H
#define BRIDGE_BRIDGESHUTDOWN_H

#include <string>

#include "ipc/IpcClient.h"
#include "xpl/Xerr.h"

// What the exports of the same names do.
namespace internal {

// The preparation of a client, which never fails, and what a test puts in its place.
using ClientInit = int (*)(IpcClient& client, const std::string& serverName);

// 0 when the request was handed to the connection, arrived or not; else the preparation's error.
[[nodiscard]] XErr bridgePlrShutdown(const std::string& instance, bool flag,
                                     ClientInit init = ipcClientInit);

// Asks the manager and then the player of every known instance; failures are only logged.
void bridgeShutdown(ClientInit init = ipcClientInit);

}  // namespace internal

#endif
