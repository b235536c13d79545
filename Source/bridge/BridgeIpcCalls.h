#ifndef BRIDGE_BRIDGEIPCCALLS_H
#define BRIDGE_BRIDGEIPCCALLS_H

#include <string>

#include "ipc/IpcClient.h"
#include "ipc/IpcServer.h"

// Functions that start clients and servers. The real ones never fail; tests replace them to inject
// failures.
struct BridgeIpcCalls {
    int (*clientInit)(IpcClient& client, const std::string& serverName);
    int (*serverInit)(IpcServerThread** out, const std::string& name, IpcDecode decode);
};

// The functions in use: the real ones, unless a test replaces them.
inline BridgeIpcCalls& bridgeIpcCalls() noexcept {
    static BridgeIpcCalls calls{ipcClientInit, ipcServerInit};
    return calls;
}

#endif
