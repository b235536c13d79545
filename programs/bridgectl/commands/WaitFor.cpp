// bridgectl wait-for EVENT [--timeout SECONDS]
#include <memory>

#include "Event.h"
#include "EventPrinting.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"

namespace {

void declare(OptionParser& parser, Session& session) {
    const auto request = std::make_shared<EventRequest>();
    request->count = 1;
    request->filter.resize(1);
    parser.add("EVENT", request->filter[0], "Name of the event").required().oneOf(eventNames());
    parser.add("--timeout", request->timeout, "Give up after so many seconds")
        .between(1, 1'000'000);
    parser.onRun([&session, request] { printRequestedEvents(session, *request); });
}

}  // namespace

extern const Command commandWaitFor;
const Command commandWaitFor{
    "", "wait-for", "Waits for one event and prints it",
    "Example: bridgectl wait-for app-installed --timeout 60\n"
    "An event that came before \"listening on ...\" stood on standard error does not count.",
    declare};
