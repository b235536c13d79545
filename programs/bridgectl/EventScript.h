#ifndef BRIDGECTL_EVENTSCRIPT_H
#define BRIDGECTL_EVENTSCRIPT_H

#include <optional>
#include <string>

#include "Event.h"

// Writes events as a script for the stand-ins, with the pauses between them.
class EventScript {
 public:
    // The head of the script.
    static std::string start();

    // The lines for an event. A list update is held back until the next event, and dropped if that
    // is the end of an image's installation: replaying it makes the library report the update
    // again.
    std::string add(const Event& event);

    // The lines held back.
    std::string finish();

 private:
    std::string linesOf(const Event& event);

    std::optional<EventMoment> first_;
    long long written_ = 0;  // milliseconds from the first event to the last one
    std::optional<Event> waiting_;
};

#endif
