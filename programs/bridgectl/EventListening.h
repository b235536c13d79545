#ifndef BRIDGECTL_EVENTLISTENING_H
#define BRIDGECTL_EVENTLISTENING_H

#include <optional>
#include <string>

#include "EventQueue.h"
#include "EventServer.h"
#include "Session.h"

// Name of the server that the session's client gets its events on.
std::string eventServerName(const Session& session);

// Listens as the session's client, whose library has started: from here on every event comes into
// eventQueue(), whose waiting Ctrl-C ends. `probe` lives as long as the listening. False after an
// error.
bool listenToEvents(Session& session, EventServerProbe& probe);

// The moment in so many seconds; nothing for 0, which means without an end.
std::optional<EventQueue::Clock::time_point> eventDeadline(unsigned seconds);

#endif
