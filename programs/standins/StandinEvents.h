#ifndef STANDINS_STANDINEVENTS_H
#define STANDINS_STANDINEVENTS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "StandinDecode.h"
#include "ipc/IpcEvent.h"

// Events as the product's programs send them to front ends, from words and in the output.

// The value of a field. Texts are sent as they stand, also when they are not UTF-8.
using StandinValue = std::variant<std::int32_t, bool, double, std::string>;

struct StandinEvent {
    const IpcEvent* kind;
    std::vector<StandinValue> values;  // one for each field
};

// An event from its name and its arguments, as people write them; nothing, and the reason in
// `error`, when there is no such event or the arguments do not fit.
std::optional<StandinEvent> standinParseEvent(const std::vector<std::string>& words,
                                              std::string& error);

// The packet, header included.
std::string standinEncodeEvent(const StandinEvent& event);

// What became of an event.
struct StandinDelivery {
    std::string_view to;    // a front end's server; empty when there was none
    std::size_t cutAt = 0;  // bytes that it was broken off after on purpose; 0: it is whole
    bool failed = false;    // the front end did not take it
};

// One line, without a line feed: `event app-displayed("N","p") -> vtr_Helper_bridge_nvo`, or a JSON
// object with "event", "arguments" and "to". To nobody (null, in JSON) when there was no front end;
// " cut at 14" or " failed" ("cutAt", "failed") behind it where that is so.
std::string standinDescribeEvent(const StandinEvent& event, const StandinDelivery& delivery,
                                 StandinFormat format);

// A line for each kind, with its fields: "    app-displayed instance package". The type stands
// behind what is no text: "status:i32".
std::string standinEventHelp();

#endif
