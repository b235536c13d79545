#ifndef BRIDGE_BRIDGEIPCCLBK_H
#define BRIDGE_BRIDGEIPCCLBK_H

#include <bridge/bridge.h>

#include <type_traits>

#include "ipc/IpcEvent.h"

// The host's functions for events, and the library's own work before it calls them.

// One per event, in slot order. Any may be null.
struct BridgeCallbacks {
#define BRIDGE_SLOT(opcode, event, callback, slot, ...) callback slot;
    IPC_EVENTS(BRIDGE_SLOT)
#undef BRIDGE_SLOT
};

// Replaces all callbacks atomically. Thread-safe. An event that is being dispatched may still use
// the old ones.
void bridgeSetCallbacks(const BridgeCallbacks& callbacks);

// An invoker per event, with the callback's parameters: bridgeOnAppInstalledClbk() and so on. It
// logs the event, does the library's own work and calls the host's function, if set. Invokers run
// on the event server's thread; strings point into the packet.
#define BRIDGE_INVOKER(opcode, event, callback, ...) std::remove_pointer_t<callback> callback##Clbk;
IPC_EVENTS(BRIDGE_INVOKER)
#undef BRIDGE_INVOKER

#endif
