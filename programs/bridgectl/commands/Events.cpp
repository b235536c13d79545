// bridgectl events [--count N] [--timeout SECONDS] [--filter NAME,...] [--record FILE]
#include <memory>

#include "Event.h"
#include "EventPrinting.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"

namespace {

void declare(OptionParser& parser, Session& session) {
    const auto request = std::make_shared<EventRequest>();
    parser.add("--count", request->count, "End after this many events").positive();
    parser.add("--timeout", request->timeout, "End after this many seconds").between(1, 1'000'000);
    parser.add("--filter", request->filter, "Only these events, separated by commas")
        .taking("NAME,...")
        .inOneWord()
        .oneOf(eventNames());
    parser
        .add("--record", request->record,
             "Also write the events to this file, as a script for the stand-ins")
        .taking("FILE")
        .notEmpty();
    parser.onRun([&session, request] { printRequestedEvents(session, *request); });
}

}  // namespace

extern const Command commandEvents;
const Command commandEvents{
    "Events",
    "",
    "events",
    "Print events as they arrive",
    "Example: bridgectl events\n"
    "Example: bridgectl events --json --filter app-installed,app-uninstalled --count 2\n"
    "Example: bridgectl events --record trace.script\n"
    "After \"listening on ...\" on standard error, no event is missed. Press Ctrl-C to end.\n"
    "With --json, each line is an object. QX-Player.exe --script FILE replays a recorded\n"
    "script with the same pauses.",
    declare};
