#include "CallTimes.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

void CallTimes::add(const char* function, Clock::duration time) {
    const auto entry = std::find_if(
        entries_.begin(), entries_.end(),
        [function](const Entry& item) { return std::string_view(item.function) == function; });
    if (entry == entries_.end()) {
        entries_.push_back({function, 1, time});
        return;
    }
    ++entry->calls;
    entry->time += time;
}

std::vector<std::string> CallTimes::lines() const {
    std::vector<std::string> all;
    for (const Entry& entry : entries_) {
        // Integers: printf would write a decimal point as the user's locale does.
        const long long time =
            std::chrono::duration_cast<std::chrono::microseconds>(entry.time).count();
        char text[80];
        std::snprintf(text, sizeof text, ": %u %s, %lld.%03lld ms", entry.calls,
                      entry.calls == 1 ? "call" : "calls", time / 1000, time % 1000);
        all.push_back(std::string(entry.function) + text);
    }
    return all;
}
