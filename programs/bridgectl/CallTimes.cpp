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
        const std::chrono::duration<double, std::milli> time = entry.time;
        char text[64];
        std::snprintf(text, sizeof text, ": %u %s, %.3f ms", entry.calls,
                      entry.calls == 1 ? "call" : "calls", time.count());
        all.push_back(std::string(entry.function) + text);
    }
    return all;
}
