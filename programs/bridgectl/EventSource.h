#ifndef BRIDGECTL_EVENTSOURCE_H
#define BRIDGECTL_EVENTSOURCE_H

#include "EventQueue.h"

// The queue of the library's events. It is never destroyed.
EventQueue& eventQueue();

// Registers a callback for every event, which queues the event with the current time.
void startEvents();

#endif
