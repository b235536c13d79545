#ifndef BRIDGE_BRIDGEIPCCLBK_H
#define BRIDGE_BRIDGEIPCCLBK_H

#include <bridge/bridge.h>

#include <type_traits>

#include "ipc/IpcEvent.h"

// The host's functions for events, and what the library does itself before it calls them.

// One for each event, in slot order; any may be null.
struct BridgeCallbacks {
#define BRIDGE_SLOT(opcode, event, callback, slot, ...) callback slot;
    IPC_EVENTS(BRIDGE_SLOT)
#undef BRIDGE_SLOT
};

// Replaces all of them, from any thread; an event that is being dispatched may still see the old
// ones.
void bridgeSetCallbacks(const BridgeCallbacks& callbacks);

// For each event its invoker, with the callback's parameters: bridgeOnAppInstalledClbk() and so on.
// It logs the event, does the library's own work for it and calls the host's function if there is
// one. Invokers run on the event server's thread; texts are the packet's own.
#define BRIDGE_INVOKER(opcode, event, callback, ...) std::remove_pointer_t<callback> callback##Clbk;
IPC_EVENTS(BRIDGE_INVOKER)
#undef BRIDGE_INVOKER

#endif
