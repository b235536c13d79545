#ifndef BRIDGE_BRIDGEEVENTS_H
#define BRIDGE_BRIDGEEVENTS_H

#include "bridge/BridgeIpcClbk.h"
#include "xpl/Xerr.h"

// Starts and stops the event server. Implements the exports of the same names.
namespace internal {

// Starts the server on the first call, and sets the callbacks. A failed start sets none and is not
// retried; later calls set callbacks that are never called.
void bridgeRegisterCallbacks(const BridgeCallbacks& callbacks);

// Stops the server. Inside a callback it only logs an error. Always returns 0.
XErr bridgeApiFini();

}  // namespace internal

#endif
