#ifndef BRIDGECTL_EVENTQUEUE_H
#define BRIDGECTL_EVENTQUEUE_H

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

#include "Event.h"
#include "xpl/Xattributes.h"

// Events between the library's thread, which adds them, and the main thread, which prints them. A
// slow reader of the output does not block the library. Thread-safe.
class EventQueue {
 public:
    using Clock = std::chrono::steady_clock;

    enum class End { Stopped, TimedOut };

    void push(Event event);

    // Makes take() return.
    void stop();

    // Waits for an event until `deadline`, or without limit. Empty when the wait has ended, even if
    // events are queued; `end` has the reason.
    std::optional<Event> take(const std::optional<Clock::time_point>& deadline, End& end);

    // The next queued event, if any. Does not wait.
    std::optional<Event> takeQueued();

 private:
    std::optional<Event> takeFirst() XTS_REQUIRES(lock_);

    std::mutex lock_;
    std::condition_variable_any changed_;
    std::deque<Event> events_ XTS_GUARDED_BY(lock_);
    bool stopped_ XTS_GUARDED_BY(lock_) = false;
};

#endif
