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

// Events from the product's programs to front ends: parsing, encoding and printing.

// The value of a field. Texts are sent unchanged, even if they are not UTF-8.
using StandinValue = std::variant<std::int32_t, bool, double, std::string>;

struct StandinEvent {
    const IpcEvent* kind;
    std::vector<StandinValue> values;  // one for each field
};

// Parses an event from its name and arguments. Empty, with the reason in `error`, if there is no
// such event or the arguments do not fit.
std::optional<StandinEvent> standinParseEvent(const std::vector<std::string>& words,
                                              std::string& error);

// The packet with its header.
std::string standinEncodeEvent(const StandinEvent& event);

// The result of sending an event.
struct StandinDelivery {
    std::string_view to;    // a front end's server; empty if there was none
    std::size_t cutAt = 0;  // length after which the script cut it; 0: complete
    bool failed = false;    // the front end did not accept it
};

// One line without a line feed: `event app-displayed("N","p") -> vtr_Helper_bridge_nvo`, or a JSON
// object with "event", "arguments" and "to". Without a front end, it is sent to "nobody" (null in
// JSON). A suffix " cut at 14" or " failed" ("cutAt", "failed" in JSON) shows a problem.
std::string standinDescribeEvent(const StandinEvent& event, const StandinDelivery& delivery,
                                 StandinFormat format);

// A line for each kind of event with its fields: "    app-displayed instance package". Fields that
// are not texts have a type: "status:i32".
std::string standinEventHelp();

#endif
