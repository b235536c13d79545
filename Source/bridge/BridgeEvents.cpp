#include "bridge/BridgeEvents.h"

#include <mutex>
#include <string>
#include <utility>

#include "bridge/BridgeDec.h"
#include "bridge/BridgeEntry.h"
#include "bridge/BridgeInit.h"
#include "bridge/BridgeIpcCalls.h"
#include "utl/UtlFolders.h"
#include "xpl/Xattributes.h"
#include "xpl/Xsystem.h"
#include "xpl/Xunload.h"

namespace internal {

namespace {

struct EventServer {
    std::mutex lock;
    bool exists XTS_GUARDED_BY(lock) = false;    // a start was attempted
    bool finished XTS_GUARDED_BY(lock) = false;  // stopped by bridgeApiFini
    IpcServerThread* thread XTS_GUARDED_BY(lock) = nullptr;
};

EventServer& eventServer() {
    static EventServer& server = *xunloadKeep<EventServer>();
    return server;
}

// Returns false when this call tried to start the server and failed.
bool ensureServer(EventServer& server) {
    const std::lock_guard<std::mutex> guard(server.lock);
    if (server.finished) {
        XLOG_E(kLog, "%s: called after bridgeApiFini, no event will come",
               "bridgeRegisterCallbacks");
        return true;
    }
    if (server.exists) return true;
    XLOG_I(kLog, "Bridge ipc ..");
    server.exists = true;
    const std::string name = utlLocalObjectName(std::string(clientId()) + "_bridge");
    const int err = bridgeIpcCalls().serverInit(&server.thread, name, bridgeDecode);
    if (err != 0) XLOG_E(kLog, "FATAL: Bridge IPC server init failed: err %d", err);
    return err == 0;
}

// Takes the running server, so that only the caller stops it; null when there is none.
IpcServerThread* takeForStop(EventServer& server) {
    const std::lock_guard<std::mutex> guard(server.lock);
    if (server.thread != nullptr && ipcServerIsCurrentThread(server.thread)) {
        XLOG_E(kLog, "%s: called inside a callback, nothing is stopped", "bridgeApiFini");
        return nullptr;
    }
    server.finished = server.exists;
    return std::exchange(server.thread, nullptr);
}

}  // namespace

void bridgeRegisterCallbacks(const BridgeCallbacks& callbacks) {
    if (clientId() == nullptr) {
        XLOG_E(kLog, "%s: called before bridgeApiInit", "bridgeRegisterCallbacks");
        return;
    }
    if (ensureServer(eventServer())) bridgeSetCallbacks(callbacks);
}

XErr bridgeApiFini() {
    // Called from a destructor of a host's DLL: the server's thread has been terminated.
    if (xsystemProcessEnds()) return XERR_SUCCESS;
    // Not under the lock, because a running callback may register callbacks.
    IpcServerThread* thread = takeForStop(eventServer());
    if (thread != nullptr) ipcServerFini(&thread);
    return XERR_SUCCESS;
}

}  // namespace internal
