// Prints the requested events of the library.
#include "EventPrinting.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "Event.h"
#include "EventListening.h"
#include "EventQueue.h"
#include "EventScript.h"
#include "EventServer.h"
#include "EventSource.h"
#include "shared/ExitCode.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"

namespace {

// Prints the requested events, up to the count.
class Printer {
 public:
    Printer(Session& session, const EventRequest& request) : session_(session), request_(request) {}

    // Creates the file of the record. False after an error.
    bool open() {
        if (request_.record.empty()) return true;
        const XErr err = xfileOpen(record_, request_.record, XfileMode::WriteNew);
        return err == XERR_SUCCESS ? write(EventScript::start()) : failRecord(err);
    }

    // False after an error of the output or the file.
    bool print(const Event& event) {
        if (!isWanted(event)) return true;
        ++printed_;
        return write(script_.add(event)) &&
               session_.print(session_.json ? eventJson(event) : eventText(event));
    }

    bool close() { return write(script_.finish()); }

    bool isComplete() const { return request_.count > 0 && printed_ == request_.count; }

    std::string summary() const {
        const std::string noun = request_.count > 0
                                     ? " of " + std::to_string(request_.count) + " events"
                                 : printed_ == 1 ? " event"
                                                 : " events";
        return std::to_string(printed_) + noun;
    }

 private:
    bool write(const std::string& lines) {
        std::size_t done = 0;
        if (!record_.isOpen()) return true;
        const XErr err = xfileWriteAll(record_, lines.data(), lines.size(), done);
        return err == XERR_SUCCESS || failRecord(err);
    }

    bool failRecord(XErr err) {
        return session_.failStatus(ExitCode::File, "cannot write " + request_.record, err);
    }

    bool isWanted(const Event& event) const {
        const std::vector<std::string>& filter = request_.filter;
        return filter.empty() ||
               std::find(filter.begin(), filter.end(), event.kind->name) != filter.end();
    }

    Session& session_;
    const EventRequest& request_;
    std::size_t printed_ = 0;
    EventScript script_;
    Xfile record_;
};

// Prints until the count is reached or the wait ends, then the events that arrived before the
// library stopped. False after an error.
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
    Printer printer(session, request);
    if (!printer.open()) return;
    if (!session.start() || !listenToEvents(session, probe)) return;
    session.notice("listening on " + eventServerName(session));
    EventQueue::End end = EventQueue::End::Stopped;
    if (!printEvents(session, request, printer, end) || !printer.close()) return;
    if (printer.isComplete()) return;
    if (request.count > 0 && end == EventQueue::End::TimedOut) {
        session.fail(ExitCode::Timeout, printer.summary());
    } else {
        session.notice(printer.summary());
    }
}
