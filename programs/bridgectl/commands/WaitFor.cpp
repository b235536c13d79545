// bridgectl wait-for EVENT [--timeout SECONDS]
#include <CLI/CLI.hpp>

#include "Command.h"
#include "Event.h"
#include "EventPrinting.h"

namespace {

void declare(CLI::App& parser, Session& session) {
    const auto request = std::make_shared<EventRequest>();
    request->count = 1;
    request->filter.resize(1);
    parser.add_option("EVENT", request->filter[0], "Name of the event")
        ->required()
        ->check(CLI::IsMember(eventNames()));
    parser.add_option("--timeout", request->timeout, "Give up after so many seconds")
        ->check(CLI::Range(1u, 1'000'000u));
    parser.callback([&session, request] { printRequestedEvents(session, *request); });
}

}  // namespace

extern const Command commandWaitFor;
const Command commandWaitFor{
    "", "wait-for", "Waits for one event and prints it",
    "Example: bridgectl wait-for app-installed --timeout 60\n"
    "An event that came before \"listening on ...\" stood on standard error does not count.",
    declare};
