#ifndef BRIDGE_BRIDGEEVENTS_H
#define BRIDGE_BRIDGEEVENTS_H

#include <string>

#include "bridge/BridgeIpcClbk.h"
#include "ipc/IpcServer.h"
#include "xpl/Xerr.h"

// The event server's life. The functions are what the exports of the same names do.
namespace internal {

// The start of a server, which never fails, and what a test puts in its place.
using ServerInit = int (*)(IpcServerThread** out, const std::string& name, IpcDecode decode);

// Starts the server on the first call, and sets the callbacks. A failed start sets none and is
// never tried again; later calls set theirs, which nothing calls then.
void bridgeRegisterCallbacks(const BridgeCallbacks& callbacks, ServerInit init = ipcServerInit);

// Stops the server, once; from inside a callback it only logs an error. 0 in every case.
XErr bridgeApiFini();

}  // namespace internal

#endif
