// bridgectl events [--count N] [--timeout SECONDS] [--filter NAME,...] [--record FILE]
#include <memory>

#include "Event.h"
#include "EventPrinting.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"

namespace {

void declare(OptionParser& parser, Session& session) {
    const auto request = std::make_shared<EventRequest>();
    parser.add("--count", request->count, "End after so many events").positive();
    parser.add("--timeout", request->timeout, "End after so many seconds").between(1, 1'000'000);
    parser.add("--filter", request->filter, "Only these events: names, apart by commas")
        .inOneWord()
        .oneOf(eventNames());
    parser
        .add("--record", request->record,
             "Also write the events into this file, as a script for the stand-ins")
        .notEmpty();
    parser.onRun([&session, request] { printRequestedEvents(session, *request); });
}

}  // namespace

extern const Command commandEvents;
const Command commandEvents{
    "", "events", "Prints what the product's programs report, as it comes",
    "Example: bridgectl events --json --filter app-installed,app-uninstalled --count 2\n"
    "Once \"listening on ...\" stands on standard error, no event is missed. Ctrl-C ends it. The\n"
    "JSON is an object a line. A recorded script is replayed, with the same pauses, by\n"
    "QX-Player.exe --script FILE.",
    declare};
