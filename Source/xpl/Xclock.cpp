// Local time and its formatting. XclockWinnt.cpp reads the system clock.
#include "xpl/Xclock.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdio>
#include <string_view>

namespace {

constexpr std::int64_t kMicrosPerSecond = 1'000'000;

constexpr std::int64_t kSecondsPerDay = 86'400;

// Caches the zone's offset for one second: looking it up takes longer than formatting the rest of a
// log line. Second and offset share one word, so a reader never sees a mix of two writers.
std::int64_t offsetAt(std::int64_t utcSeconds) {
    // An offset is less than a day: 17 bits and a sign.
    constexpr std::int64_t kOffsets = std::int64_t{1} << 20;
    static std::atomic<std::int64_t> known{-1};
    const std::int64_t last = known.load(std::memory_order_relaxed);
    if (last >= 0 && last / kOffsets == utcSeconds) return last % kOffsets - kOffsets / 2;
    const std::int64_t offset = xclockOffset(utcSeconds);
    known.store(utcSeconds * kOffsets + offset + kOffsets / 2, std::memory_order_relaxed);
    return offset;
}

// The date of a day since 1970-01-01 as a number yyyymmdd. Cached per day: the C runtime's calendar
// takes a quarter of the time of a log line. Day and date share one word, so a reader never sees a
// mix of two writers.
std::int64_t dateOf(std::int64_t day) {
    constexpr std::int64_t kDates = 100'000'000;
    static std::atomic<std::int64_t> known{-1};
    const std::int64_t last = known.load(std::memory_order_relaxed);
    if (last >= 0 && last / kDates == day) return last % kDates;
    const std::string text = xclockFormat(day * kSecondsPerDay * kMicrosPerSecond, "%Y%m%d");
    std::int64_t date = 0;
    std::from_chars(text.data(), text.data() + text.size(), date);
    known.store(day * kDates + date, std::memory_order_relaxed);
    return date;
}

// Writes a number with leading zeros, then the separator.
char* put(char* to, std::int64_t number, int digits, char separator) {
    for (int i = digits - 1; i >= 0; --i, number /= 10) {
        to[i] = static_cast<char>('0' + number % 10);
    }
    to[digits] = separator;
    return to + digits + 1;
}

// For the years 1970 to 3000.
XclockStamp usualStamp(std::int64_t local, std::string_view zoneSuffix) {
    const std::int64_t seconds = local / kMicrosPerSecond;
    const std::int64_t date = dateOf(seconds / kSecondsPerDay);
    const std::int64_t ofDay = seconds % kSecondsPerDay;
    XclockStamp stamp{};
    char* to = put(stamp.data(), date / 10'000, 4, '-');
    to = put(to, date / 100 % 100, 2, '-');
    to = put(to, date % 100, 2, ' ');
    to = put(to, ofDay / 3600, 2, ':');
    to = put(to, ofDay / 60 % 60, 2, ':');
    to = put(to, ofDay % 60, 2, '.');
    to = put(to, local % kMicrosPerSecond / 1000, 3, '\0') - 1;
    const auto room = static_cast<std::size_t>(stamp.data() + stamp.size() - 1 - to);
    const std::string_view fitting = zoneSuffix.substr(0, room);
    std::copy(fitting.begin(), fitting.end(), to);
    return stamp;
}

}  // namespace

std::int64_t xclockNow() {
    constexpr std::int64_t kResolution = 1000;
    const std::int64_t utc = xclockUtc() / kResolution * kResolution;
    return utc + offsetAt(utc / kMicrosPerSecond) * kMicrosPerSecond;
}

XclockStamp xclockStamp(std::int64_t local, const char* zoneSuffix) {
    // End of the C runtime's calendar.
    constexpr std::int64_t kYear3001 = 32'535'216'000 * kMicrosPerSecond;
    if (local >= 0 && local < kYear3001) return usualStamp(local, zoneSuffix);
    const int milliseconds = static_cast<int>((local % kMicrosPerSecond) / 1000);
    XclockStamp stamp{};
    std::snprintf(stamp.data(), stamp.size(), "%s.%03d%s",
                  xclockFormat(local, "%Y-%m-%d %H:%M:%S").c_str(), milliseconds, zoneSuffix);
    return stamp;
}

std::string xclockZoneSuffix(std::int64_t local, std::int64_t utc) {
    return local - utc > 0 ? xclockFormat(local - utc, "+%H%M")
                           : xclockFormat(utc - local, "-%H%M");
}
