#ifndef BRIDGECTL_EVENTPRINTING_H
#define BRIDGECTL_EVENTPRINTING_H

#include <string>
#include <vector>

#include "Session.h"

struct EventRequest {
    unsigned count = 0;               // 0: no limit
    unsigned timeout = 0;             // seconds; 0: no limit
    std::vector<std::string> filter;  // empty: every event
    std::string record;               // file for a script of the events; empty: none
};

// Starts the library, listens as the session's client and prints events until the count is reached,
// the time is over or the user presses Ctrl-C.
void printRequestedEvents(Session& session, const EventRequest& request);

#endif
