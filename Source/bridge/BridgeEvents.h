#ifndef BRIDGE_BRIDGEEVENTS_H
#define BRIDGE_BRIDGEEVENTS_H

#include "bridge/BridgeIpcClbk.h"
#include "xpl/Xerr.h"

// The event server's life. The functions are what the exports of the same names do.
namespace internal {

// Starts the server on the first call, and sets the callbacks. A failed start sets none and is
// never tried again; later calls set theirs, which nothing calls then.
void bridgeRegisterCallbacks(const BridgeCallbacks& callbacks);

// Stops the server, once; from inside a callback it only logs an error. 0 in every case.
XErr bridgeApiFini();

}  // namespace internal

#endif
