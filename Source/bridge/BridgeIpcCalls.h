#ifndef BRIDGE_BRIDGEIPCCALLS_H
#define BRIDGE_BRIDGEIPCCALLS_H

#include <string>

#include "ipc/IpcClient.h"
#include "ipc/IpcServer.h"

// The starts of clients and servers, which never fail by themselves, and what a test puts in their
// place.
struct BridgeIpcCalls {
    int (*clientInit)(IpcClient& client, const std::string& serverName);
    int (*serverInit)(IpcServerThread** out, const std::string& name, IpcDecode decode);
};

// The calls in use: the layer's own, until a test replaces them.
inline BridgeIpcCalls& bridgeIpcCalls() noexcept {
    static BridgeIpcCalls calls{ipcClientInit, ipcServerInit};
    return calls;
}

#endif
