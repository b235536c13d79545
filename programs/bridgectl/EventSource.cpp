// The library's callbacks. They run on the library's thread and only copy the event. They are
// noexcept, since no exception may pass through the library: running out of memory ends the
// program.
#include "EventSource.h"

#include <bridge/bridge.h>

#include <chrono>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

#include "Event.h"
#include "ipc/IpcEvent.h"

namespace {

EventValue valueOf(const char* text) { return std::string(text); }
EventValue valueOf(bridge_i32 number) { return number; }
EventValue valueOf(double number) { return number; }
EventValue valueOf(bridge_bool flag) { return flag != 0; }

// The callback of slot SLOT.
template <std::size_t SLOT, typename... Parameters>
void BRIDGE_CALL onEvent(Parameters... values) noexcept {
    static_assert(ipcTakesFields<Parameters...>(IPC_EVENT_ROWS[SLOT]), "as in bridge.h");
    eventQueue().push({localTimeNow(),
                       &IPC_EVENT_ROWS[SLOT],
                       {valueOf(values)...},
                       std::chrono::steady_clock::now()});
}

template <std::size_t... SLOTS>
void registerSlots(std::index_sequence<SLOTS...>) {
    bridgeRegisterCallbacks(onEvent<SLOTS>...);
}

}  // namespace

EventQueue& eventQueue() {
    static EventQueue& queue = *new EventQueue;
    return queue;
}

void startEvents() { registerSlots(std::make_index_sequence<std::size(IPC_EVENT_ROWS)>()); }
