// Listening to the library's events and printing those that are wanted.
#include "EventPrinting.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "Event.h"
#include "EventListening.h"
#include "EventQueue.h"
#include "EventServer.h"
#include "EventSource.h"
#include "shared/ExitCode.h"

namespace {

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

// Prints until the count is reached or the waiting ends, and then what came before the library
// stopped. False, after an error, when the output takes no more.
bool printEvents(Session& session, const EventRequest& request, Printer& printer,
                 EventQueue::End& end) {
    const std::optional<EventQueue::Clock::time_point> deadline = eventDeadline(request.timeout);
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
    if (!session.start() || !listenToEvents(session, probe)) return;
    session.notice("listening on " + eventServerName(session));
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
