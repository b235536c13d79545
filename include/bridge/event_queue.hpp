/**
 * @file event_queue.hpp
 * @brief Queues from which the host's threads take events.
 */
#ifndef BRIDGE_EVENT_QUEUE_HPP
#define BRIDGE_EVENT_QUEUE_HPP

#include <algorithm>
#include <bridge/dispatch.hpp>
#include <bridge/event.hpp>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace bridge {

/** An event arrived at a full queue. The queue receives no more events. */
class EventOverflow : public std::runtime_error {
 public:
    explicit EventOverflow(std::size_t limit)
        : std::runtime_error("more than " + std::to_string(limit) +
                             " events came before they were taken") {}
};

/** Internal; not for hosts. */
namespace detail {

/** Waits for a condition. Returns false when the limit expires first. */
template <typename Condition>
bool waitFor(std::condition_variable& changed, std::unique_lock<std::mutex>& guard,
             std::optional<std::chrono::milliseconds> limit, Condition condition) {
    if (limit) return changed.wait_for(guard, *limit, condition);
    changed.wait(guard, condition);
    return true;
}

/** Throws on the event thread, which would wait for itself. */
inline void refuseOnEventThread(const char* function) {
    if (isEventThread()) {
        throw std::logic_error(std::string(function) + " must not be called inside a callback");
    }
}

struct QueueState {
    std::mutex lock;
    std::condition_variable changed;
    std::deque<Event> events;
    std::size_t limit = 0;
    bool hasOverflown = false;
    bool hasEnded = false;

    void put(const Event& event) {
        const std::lock_guard<std::mutex> guard(lock);
        if (events.size() >= limit) hasOverflown = true;
        if (!hasOverflown) events.push_back(event);
        changed.notify_all();
    }

    void end() {
        const std::lock_guard<std::mutex> guard(lock);
        hasEnded = true;
        changed.notify_all();
    }
};

}  // namespace detail

/**
 * A FIFO queue of the events from its construction until the library ends. It has no thread of its
 * own. Call listen() or registerCallbacks() as well. Every thread may call pop(), but callbacks
 * must not.
 *
 * An overflow is reported: pop() first returns the events in the queue, then throws EventOverflow.
 */
class EventQueue {
 public:
    /** A working host leaves far fewer events unread. */
    static constexpr std::size_t kUsualLimit = 10000;

    explicit EventQueue(std::size_t limit = kUsualLimit) : EventQueue({}, limit) {}

    /** Only the events with these names, which are in kEventNames. Throws for other names. */
    explicit EventQueue(std::vector<std::string> names, std::size_t limit = kUsualLimit)
        : state_(std::make_shared<detail::QueueState>()) {
        for (const std::string& name : names) refuseUnknown(name);
        state_->limit = limit;
        observer_ = std::make_shared<const detail::Observer>(
            detail::Observer{[state = state_, names = std::move(names)](const Event& event) {
                                 if (isWanted(names, event)) state->put(event);
                                 return false;
                             },
                             [state = state_] { state->end(); }});
        detail::addObserver(&detail::Dispatch::queues, observer_);
    }

    ~EventQueue() { detail::removeObserver(&detail::Dispatch::queues, observer_); }
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    /**
     * Waits for the next event and removes it. Returns nothing when the limit expires, or when the
     * library has ended and the queue is empty. Without a limit it waits until the library ends.
     */
    std::optional<Event> pop(std::optional<std::chrono::milliseconds> limit = std::nullopt) {
        detail::refuseOnEventThread("pop()");
        std::unique_lock<std::mutex> guard(state_->lock);
        const bool came = detail::waitFor(state_->changed, guard, limit, [this] {
            return !state_->events.empty() || state_->hasOverflown || state_->hasEnded;
        });
        if (!came) return std::nullopt;
        if (!state_->events.empty()) {
            std::optional<Event> event = std::move(state_->events.front());
            state_->events.pop_front();
            return event;
        }
        if (state_->hasOverflown) throw EventOverflow(state_->limit);
        return std::nullopt;
    }

    /** Whether the library has ended and the queue is empty. */
    bool hasEnded() const {
        const std::lock_guard<std::mutex> guard(state_->lock);
        return state_->events.empty() && state_->hasEnded;
    }

 private:
    static void refuseUnknown(const std::string& name) {
        const auto* const end = std::end(kEventNames);
        if (std::find(std::begin(kEventNames), end, name) != end) return;
        throw std::invalid_argument("there is no event \"" + name + "\"");
    }

    static bool isWanted(const std::vector<std::string>& names, const Event& event) {
        return names.empty() || std::find(names.begin(), names.end(), nameOf(event)) != names.end();
    }

    std::shared_ptr<detail::QueueState> state_;
    detail::SharedObserver observer_;
};

}  // namespace bridge

#endif
