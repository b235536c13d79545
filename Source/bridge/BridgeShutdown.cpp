// Shutting down the product's running programs.
#include "bridge/BridgeShutdown.h"

#include "bridge/BridgeEntry.h"
#include "bridge/BridgeIpcCalls.h"
#include "conf/Conf.h"
#include "mim/client/MimEnc.h"
#include "plr/client/PlrEnc.h"
#include "utl/UtlFolders.h"

namespace {

std::string playerServer(const std::string& instance) {
    return utlLocalObjectName("plr_" + instance);
}

}  // namespace

namespace internal {

XErr bridgePlrShutdown(const std::string& instance, bool flag) {
    const std::string server = playerServer(instance);
    IpcClient client;
    if (const int err = bridgeIpcCalls().clientInit(client, server); err != 0) {
        XLOG_E(kLog, "IPC client for %s init failed: err %d", server.c_str(), err);
        return err;
    }
    plrShutdownRpc(client, flag);
    return XERR_SUCCESS;
}

void bridgeShutdown() {
    IpcClient manager;  // lives until every player has been asked
    if (const int err = bridgeIpcCalls().clientInit(manager, utlLocalObjectName("mim")); err != 0) {
        XLOG_E(kLog, "MIM IPC client init failed: err %d", err);
    } else {
        mimShutdownRpc(manager);
    }
    for (const std::string& instance : confGetInstances(confStore())) {
        // Does not call bridgePlrShutdown, since the log line of a failure must show this
        // function's name.
        const std::string server = playerServer(instance);
        IpcClient player;
        if (const int err = bridgeIpcCalls().clientInit(player, server); err != 0) {
            XLOG_E(kLog, "IPC client for %s init failed: err %d", server.c_str(), err);
        } else {
            plrShutdownRpc(player, /*flag=*/false);
        }
    }
}

}  // namespace internal
