// Texts of points in time; the clock itself is in XclockWinnt.cpp.
#include "xpl/Xclock.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace {

constexpr std::int64_t kMicrosPerSecond = 1'000'000;

constexpr std::int64_t kSecondsPerDay = 86'400;

struct Date {
    std::int64_t year;
    std::int64_t month;
    std::int64_t day;
};

// The Gregorian date of a day since 1970-01-01, not before it. Years begin in March here, so that
// the leap day is the last one.
Date dateOf(std::int64_t day) {
    constexpr std::int64_t kDaysTo1970 = 719'468;  // from 0000-03-01
    constexpr std::int64_t kDaysPerEra = 146'097;  // 400 years
    const std::int64_t days = day + kDaysTo1970;
    const std::int64_t era = days / kDaysPerEra;
    const std::int64_t ofEra = days % kDaysPerEra;
    const std::int64_t yearOfEra = (ofEra - ofEra / 1460 + ofEra / 36'524 - ofEra / 146'096) / 365;
    const std::int64_t ofYear = ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t month = (5 * ofYear + 2) / 153;  // 0 is March
    const bool isNextYear = month >= 10;
    return {400 * era + yearOfEra + (isNextYear ? 1 : 0), isNextYear ? month - 9 : month + 3,
            ofYear - (153 * month + 2) / 5 + 1};
}

// Writes a number with leading zeros and the separator behind it.
char* put(char* to, std::int64_t number, int digits, char separator) {
    for (int i = digits - 1; i >= 0; --i, number /= 10) {
        to[i] = static_cast<char>('0' + number % 10);
    }
    to[digits] = separator;
    return to + digits + 1;
}

// From 1970 to 3000, without the C runtime, which takes longer than the rest of a log line.
XclockStamp usualStamp(std::int64_t local, std::string_view zoneSuffix) {
    const std::int64_t seconds = local / kMicrosPerSecond;
    const Date date = dateOf(seconds / kSecondsPerDay);
    const std::int64_t ofDay = seconds % kSecondsPerDay;
    XclockStamp stamp{};
    char* to = put(stamp.data(), date.year, 4, '-');
    to = put(to, date.month, 2, '-');
    to = put(to, date.day, 2, ' ');
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

XclockStamp xclockStamp(std::int64_t local, const char* zoneSuffix) {
    // As far as the runtime's calendar goes; behind it there is no date.
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
