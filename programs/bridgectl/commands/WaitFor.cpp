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
    parser.add("EVENT", request->filter[0], "Event").required().oneOf(eventNames());
    parser.add("--timeout", request->timeout, "Give up after this many seconds")
        .between(1, 1'000'000);
    parser.onRun([&session, request] { printRequestedEvents(session, *request); });
}

}  // namespace

extern const Command commandWaitFor;
const Command commandWaitFor{"Events",
                             "",
                             "wait-for",
                             "Wait for an event and print it",
                             "Example: bridgectl wait-for app-installed --timeout 60\n"
                             "Only events after \"listening on ...\" on standard error count.",
                             declare};
