#include "HostCalls.h"

#include "support/EventPackets.h"
#include "support/TestHeaders.h"

std::vector<std::string> hostCalls;

namespace {

std::string shown(const char* text) { return text; }
template <typename Number>
std::string shown(Number number) {
    return std::to_string(number);
}

template <std::size_t SLOT, typename... Parameters>
void write(Parameters... parameters) {
    std::string line = knownEvents().at(SLOT).slot + "(";
    const std::vector<std::string> all{shown(parameters)...};
    for (const std::string& one : all) line += (&one == &all[0] ? "" : "|") + one;
    hostCalls.push_back(line + ")");
}

template <std::size_t... SLOTS>
BridgeCallbacks writingHost(std::index_sequence<SLOTS...>) {
    return {write<SLOTS>...};
}

}  // namespace

BridgeCallbacks writingHost() {
    constexpr std::size_t slots = sizeof(BridgeCallbacks) / sizeof(bridgeOnInstanceListUpdated);
    return writingHost(std::make_index_sequence<slots>());
}
