#include "EventListening.h"

#include <chrono>
#include <thread>

#include "EventSource.h"
#include "ipc/IpcName.h"
#include "shared/Console.h"
#include "utl/UtlFolders.h"

namespace {

using Clock = EventQueue::Clock;

// Enough for a machine under heavy load.
constexpr std::chrono::seconds kStartLimit{30};

bool failInUse(Session& session, const std::string& server) {
    return session.fail(ExitCode::NameInUse,
                        "another front end serves " + server + ": see --client");
}

// The library starts to listen asynchronously after the registration, and reports a failure only in
// its log.
bool waitUntilServing(Session& session, const std::string& server, EventServerProbe& probe) {
    const Clock::time_point end = Clock::now() + kStartLimit;
    while (!probe.connect(server)) {
        if (Clock::now() >= end) {
            return session.fail(ExitCode::Library, "the library does not listen; see the log");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return probe.isOwn() || failInUse(session, server);
}

}  // namespace

std::string eventServerName(const Session& session) {
    return utlLocalObjectName(session.client + "_bridge");
}

bool listenToEvents(Session& session, EventServerProbe& probe) {
    const std::string server = eventServerName(session);
    if (ipcNameIsServed(server)) return failInUse(session, server);
    onConsoleEnd([] { eventQueue().stop(); });
    session.timed("bridgeRegisterCallbacks", startEvents);
    return waitUntilServing(session, server, probe);
}

std::optional<Clock::time_point> eventDeadline(unsigned seconds) {
    if (seconds == 0) return std::nullopt;
    return Clock::now() + std::chrono::seconds(seconds);
}
