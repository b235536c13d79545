// Shutting down the product's running programs.
#include "bridge/BridgeShutdown.h"

#include "bridge/BridgeLog.h"
#include "conf/Conf.h"
#include "mim/client/MimEnc.h"
#include "plr/client/PlrEnc.h"
#include "utl/UtlFolders.h"

namespace {

std::string playerServer(const std::string& instance) {
    return utlLocalObjectName("plr_" + instance);
}

}  // namespace

namespace bridge {

XErr bridgePlrShutdown(const std::string& instance, bool flag, ClientInit init) {
    const std::string server = playerServer(instance);
    IpcClient client;
    if (const int err = init(client, server); err != 0) {
        XLOG_E(kLog, "IPC client for %s init failed: err %d", server.c_str(), err);
        return err;
    }
    plrShutdownRpc(client, flag);
    return XERR_SUCCESS;
}

void bridgeShutdown(ClientInit init) {
    IpcClient manager;  // stays until every player has been asked
    if (const int err = init(manager, utlLocalObjectName("mim")); err != 0) {
        XLOG_E(kLog, "MIM IPC client init failed: err %d", err);
    } else {
        mimShutdownRpc(manager);
    }
    for (const std::string& instance : confGetInstances(confStore())) {
        // Not by way of bridgePlrShutdown: the line of a failure carries this function's name.
        const std::string server = playerServer(instance);
        IpcClient player;
        if (const int err = init(player, server); err != 0) {
            XLOG_E(kLog, "IPC client for %s init failed: err %d", server.c_str(), err);
        } else {
            plrShutdownRpc(player, /*flag=*/false);
        }
    }
}

}  // namespace bridge
