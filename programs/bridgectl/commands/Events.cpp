// bridgectl events [--json] [--count N] [--timeout SECONDS] [--filter NAME,...]
#include <CLI/CLI.hpp>
#include <algorithm>
#include <thread>

#include "Command.h"
#include "Console.h"
#include "EventServer.h"
#include "EventSource.h"
#include "Session.h"
#include "utl/UtlFolders.h"

namespace {

using Clock = EventQueue::Clock;

struct Arguments {
    bool json = false;
    unsigned count = 0;               // 0: without an end
    unsigned timeout = 0;             // seconds; 0: without an end
    std::vector<std::string> filter;  // empty: every event
};

// Prints the events that are wanted, up to the count.
class Printer {
 public:
    explicit Printer(const Arguments& arguments) : arguments_(arguments) {}

    // False when the output takes no more.
    bool print(const Event& event) {
        if (!isWanted(event)) return true;
        ++printed_;
        return printOut(arguments_.json ? eventJson(event) : eventText(event));
    }

    bool isComplete() const { return arguments_.count > 0 && printed_ == arguments_.count; }

    std::string summary() const {
        const std::string noun = arguments_.count > 0
                                     ? " of " + std::to_string(arguments_.count) + " events"
                                 : printed_ == 1 ? " event"
                                                 : " events";
        return std::to_string(printed_) + noun;
    }

 private:
    bool isWanted(const Event& event) const {
        const std::vector<std::string>& filter = arguments_.filter;
        return filter.empty() ||
               std::find(filter.begin(), filter.end(), eventName(event.kind)) != filter.end();
    }

    const Arguments& arguments_;
    std::size_t printed_ = 0;
};

bool failInUse(Session& session, const std::string& server) {
    return session.fail(ExitCode::NameInUse,
                        "another front end serves " + server + ": see --client");
}

// The library's thread starts to listen, or fails to, some time after the registration, and tells
// its log only.
bool waitUntilServing(Session& session, const std::string& server, EventServerProbe& probe) {
    const Clock::time_point end = Clock::now() + std::chrono::seconds(10);
    while (!probe.connect(server)) {
        if (Clock::now() >= end) {
            return session.fail(ExitCode::Library, "the library does not listen; see the log");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return probe.isOwn() || failInUse(session, server);
}

bool listen(Session& session, EventServerProbe& probe) {
    const std::string server = utlLocalObjectName(session.client + "_bridge");
    if (isServed(server)) return failInUse(session, server);
    onConsoleEnd([] { eventQueue().stop(); });
    startEvents();
    if (!waitUntilServing(session, server, probe)) return false;
    printError("listening on " + server);
    return true;
}

std::optional<Clock::time_point> deadlineOf(const Arguments& arguments) {
    if (arguments.timeout == 0) return std::nullopt;
    return Clock::now() + std::chrono::seconds(arguments.timeout);
}

// Prints until the count is reached or the waiting ends, and then what came before the library
// stopped. False when the output takes no more.
bool printEvents(Session& session, const Arguments& arguments, Printer& printer,
                 EventQueue::End& end) {
    const std::optional<Clock::time_point> deadline = deadlineOf(arguments);
    while (!printer.isComplete()) {
        const std::optional<Event> event = eventQueue().take(deadline, end);
        if (!event) break;
        if (!printer.print(*event)) return false;
    }
    session.stop();
    while (!printer.isComplete()) {
        const std::optional<Event> event = eventQueue().takeQueued();
        if (!event) break;
        if (!printer.print(*event)) return false;
    }
    return true;
}

void run(Session& session, const Arguments& arguments) {
    EventServerProbe probe;
    if (!session.start() || !listen(session, probe)) return;
    Printer printer(arguments);
    EventQueue::End end = EventQueue::End::Stopped;
    if (!printEvents(session, arguments, printer, end)) {
        session.fail(ExitCode::Output, "standard output cannot be written");
        return;
    }
    if (printer.isComplete()) return;
    printError(printer.summary());
    if (arguments.count > 0 && end == EventQueue::End::TimedOut) {
        session.exitCode = ExitCode::Timeout;
    }
}

void declare(CLI::App& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add_flag("--json", arguments->json, "As JSON: an object a line");
    parser.add_option("--count", arguments->count, "End after so many events")
        ->check(CLI::PositiveNumber);
    parser.add_option("--timeout", arguments->timeout, "End after so many seconds")
        ->check(CLI::Range(1u, 1'000'000u));
    parser.add_option("--filter", arguments->filter, "Only these events: names, apart by commas")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(eventNames()));
    parser.callback([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandEvents;
const Command commandEvents{
    "", "events", "Prints what the product's programs report, as it comes",
    "Example: bridgectl events --json --filter app-installed,app-uninstalled --count 2\n"
    "Once \"listening on ...\" stands on standard error, no event is missed. Ctrl-C ends it.",
    declare};
