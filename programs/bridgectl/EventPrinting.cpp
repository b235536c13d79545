// Listening to the library's events and printing those that are wanted.
#include "EventPrinting.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <thread>

#include "Event.h"
#include "EventQueue.h"
#include "EventServer.h"
#include "EventSource.h"
#include "ipc/IpcName.h"
#include "shared/Console.h"
#include "shared/ExitCode.h"
#include "utl/UtlFolders.h"

namespace {

using Clock = EventQueue::Clock;

// Prints the events that are wanted, up to the count.
class Printer {
 public:
    Printer(Session& session, const EventRequest& request) : session_(session), request_(request) {}

    // False, after an error, when the output takes no more.
    bool print(const Event& event) {
        if (!isWanted(event)) return true;
        ++printed_;
        return session_.print(session_.json ? eventJson(event) : eventText(event));
    }

    bool isComplete() const { return request_.count > 0 && printed_ == request_.count; }

    std::string summary() const {
        const std::string noun = request_.count > 0
                                     ? " of " + std::to_string(request_.count) + " events"
                                 : printed_ == 1 ? " event"
                                                 : " events";
        return std::to_string(printed_) + noun;
    }

 private:
    bool isWanted(const Event& event) const {
        const std::vector<std::string>& filter = request_.filter;
        return filter.empty() ||
               std::find(filter.begin(), filter.end(), event.kind->name) != filter.end();
    }

    Session& session_;
    const EventRequest& request_;
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
    if (ipcNameIsServed(server)) return failInUse(session, server);
    onConsoleEnd([] { eventQueue().stop(); });
    session.timed("bridgeRegisterCallbacks", startEvents);
    if (!waitUntilServing(session, server, probe)) return false;
    session.notice("listening on " + server);
    return true;
}

std::optional<Clock::time_point> deadlineOf(const EventRequest& request) {
    if (request.timeout == 0) return std::nullopt;
    return Clock::now() + std::chrono::seconds(request.timeout);
}

// Prints until the count is reached or the waiting ends, and then what came before the library
// stopped. False, after an error, when the output takes no more.
bool printEvents(Session& session, const EventRequest& request, Printer& printer,
                 EventQueue::End& end) {
    const std::optional<Clock::time_point> deadline = deadlineOf(request);
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

}  // namespace

void printRequestedEvents(Session& session, const EventRequest& request) {
    EventServerProbe probe;
    if (!session.start() || !listen(session, probe)) return;
    Printer printer(session, request);
    EventQueue::End end = EventQueue::End::Stopped;
    if (!printEvents(session, request, printer, end)) return;
    if (printer.isComplete()) return;
    if (request.count > 0 && end == EventQueue::End::TimedOut) {
        session.fail(ExitCode::Timeout, printer.summary());
    } else {
        session.notice(printer.summary());
    }
}
