#ifndef BRIDGECTL_EVENTSOURCE_H
#define BRIDGECTL_EVENTSOURCE_H

#include "EventQueue.h"

// The queue that the library's events come into. It lives to the program's end.
EventQueue& eventQueue();

// Registers a callback for every event, which puts it into the queue with the present time.
void startEvents();

#endif
