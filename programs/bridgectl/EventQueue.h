#ifndef BRIDGECTL_EVENTQUEUE_H
#define BRIDGECTL_EVENTQUEUE_H

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

#include "Event.h"
#include "xpl/Xattributes.h"

// Events on their way from the library's thread to the program's own, which prints them: a slow
// reader of the output never keeps the library from its next packet. Safe from every thread.
class EventQueue {
 public:
    using Clock = std::chrono::steady_clock;

    enum class End { Stopped, TimedOut };

    void push(Event event);

    // Ends the waiting of take().
    void stop();

    // Waits for an event until `deadline`, without limit when there is none. Nothing, and the
    // reason in `end`, as soon as the waiting has ended, whatever is still queued.
    std::optional<Event> take(const std::optional<Clock::time_point>& deadline, End& end);

    // The next queued event, without waiting.
    std::optional<Event> takeQueued();

 private:
    std::optional<Event> takeFirst() XTS_REQUIRES(lock_);

    std::mutex lock_;
    std::condition_variable_any changed_;
    std::deque<Event> events_ XTS_GUARDED_BY(lock_);
    bool stopped_ XTS_GUARDED_BY(lock_) = false;
};

#endif
