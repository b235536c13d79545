#ifndef BRIDGECTL_EVENTLISTENING_H
#define BRIDGECTL_EVENTLISTENING_H

#include <optional>
#include <string>

#include "EventQueue.h"
#include "EventServer.h"
#include "Session.h"

// The name of the server that receives the events of the session's client.
std::string eventServerName(const Session& session);

// Starts to listen as the session's client. The library must have been started. Every event then
// arrives in eventQueue(), and Ctrl-C stops the queue. `probe` must live as long as the session
// listens. False after an error.
bool listenToEvents(Session& session, EventServerProbe& probe);

// The time in this many seconds. Empty for 0, which means no limit.
std::optional<EventQueue::Clock::time_point> eventDeadline(unsigned seconds);

#endif
