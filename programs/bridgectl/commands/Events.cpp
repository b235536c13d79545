// bridgectl events [--count N] [--timeout SECONDS] [--filter NAME,...]
#include <CLI/CLI.hpp>

#include "Command.h"
#include "Event.h"
#include "EventPrinting.h"

namespace {

void declare(CLI::App& parser, Session& session) {
    const auto request = std::make_shared<EventRequest>();
    parser.add_option("--count", request->count, "End after so many events")
        ->check(CLI::PositiveNumber);
    parser.add_option("--timeout", request->timeout, "End after so many seconds")
        ->check(CLI::Range(1u, 1'000'000u));
    parser.add_option("--filter", request->filter, "Only these events: names, apart by commas")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(eventNames()));
    parser.callback([&session, request] { printRequestedEvents(session, *request); });
}

}  // namespace

extern const Command commandEvents;
const Command commandEvents{
    "", "events", "Prints what the product's programs report, as it comes",
    "Example: bridgectl events --json --filter app-installed,app-uninstalled --count 2\n"
    "Once \"listening on ...\" stands on standard error, no event is missed. Ctrl-C ends it. The\n"
    "JSON is an object a line.",
    declare};
