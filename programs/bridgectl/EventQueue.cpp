#include "EventQueue.h"

#include <utility>

void EventQueue::push(Event event) {
    const std::lock_guard<std::mutex> guard(lock_);
    events_.push_back(std::move(event));
    changed_.notify_all();
}

void EventQueue::stop() {
    const std::lock_guard<std::mutex> guard(lock_);
    stopped_ = true;
    changed_.notify_all();
}

std::optional<Event> EventQueue::take(const std::optional<Clock::time_point>& deadline, End& end) {
    const std::lock_guard<std::mutex> guard(lock_);
    for (;;) {
        const bool isLate = deadline && Clock::now() >= *deadline;
        if (stopped_ || isLate) {
            end = stopped_ ? End::Stopped : End::TimedOut;
            return std::nullopt;
        }
        if (!events_.empty()) return takeFirst();
        if (deadline) {
            changed_.wait_until(lock_, *deadline);
        } else {
            changed_.wait(lock_);
        }
    }
}

std::optional<Event> EventQueue::takeQueued() {
    const std::lock_guard<std::mutex> guard(lock_);
    return takeFirst();
}

std::optional<Event> EventQueue::takeFirst() {
    if (events_.empty()) return std::nullopt;
    Event event = std::move(events_.front());
    events_.pop_front();
    return event;
}
