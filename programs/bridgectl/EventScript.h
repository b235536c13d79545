#ifndef BRIDGECTL_EVENTSCRIPT_H
#define BRIDGECTL_EVENTSCRIPT_H

#include <optional>
#include <string>

#include "Event.h"

// Events as a script of the stand-ins, with the pauses between them, line after line as they come.
class EventScript {
 public:
    // What comes before the first event.
    static std::string start();

    // The lines that an event adds. An update of the list of instances waits for the next event:
    // the library itself reports one before the end of an image's installation, and would do so
    // again when that is replayed.
    std::string add(const Event& event);

    // The lines that still wait.
    std::string finish();

 private:
    std::string linesOf(const Event& event);

    std::optional<EventMoment> first_;
    long long written_ = 0;  // milliseconds from the first event to the last one
    std::optional<Event> waiting_;
};

#endif
