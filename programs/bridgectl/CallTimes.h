#ifndef BRIDGECTL_CALLTIMES_H
#define BRIDGECTL_CALLTIMES_H

#include <chrono>
#include <string>
#include <vector>

// Time spent inside functions of the library, in the order of their first calls.
class CallTimes {
 public:
    using Clock = std::chrono::steady_clock;

    // `function` is a string literal.
    void add(const char* function, Clock::duration time);

    // "bridgeConfGetI32: 3 calls, 0.042 ms"
    std::vector<std::string> lines() const;

 private:
    struct Entry {
        const char* function;
        unsigned calls;
        Clock::duration time;
    };
    std::vector<Entry> entries_;
};

// Adds the time from its construction to its destruction.
class CallTimer {
 public:
    CallTimer(CallTimes& times, const char* function) : times_(times), function_(function) {}
    ~CallTimer() { times_.add(function_, CallTimes::Clock::now() - start_); }
    CallTimer(const CallTimer&) = delete;
    CallTimer& operator=(const CallTimer&) = delete;

 private:
    CallTimes& times_;
    const char* function_;
    const CallTimes::Clock::time_point start_ = CallTimes::Clock::now();
};

#endif
