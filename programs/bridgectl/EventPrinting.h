#ifndef BRIDGECTL_EVENTPRINTING_H
#define BRIDGECTL_EVENTPRINTING_H

#include <string>
#include <vector>

#include "Session.h"

struct EventRequest {
    unsigned count = 0;               // 0: without an end
    unsigned timeout = 0;             // seconds; 0: without an end
    std::vector<std::string> filter;  // empty: every event
    std::string record;               // file that gets them as a script; empty: none
};

// The work of a command: starts the library, listens as the session's client and prints the events
// as they come, until there are enough of them, the time is over or the user ends it.
void printRequestedEvents(Session& session, const EventRequest& request);

#endif
