#ifndef XPL_XCLOCK_H
#define XPL_XCLOCK_H

#include <array>
#include <cstdint>
#include <string>

// Local wall-clock time as microseconds since 1970-01-01, with a resolution of a millisecond.
std::int64_t xclockNow();

// The system clock: UTC in microseconds since 1970-01-01, and the offset of local time from UTC in
// seconds at a given UTC second.
std::int64_t xclockUtc();
std::int64_t xclockOffset(std::int64_t utcSeconds);

// UTC of a local time. In a zone with daylight saving time, assumes that it applies all year, so
// the result is an hour off in winter.
std::int64_t xclockLocalToUtc(std::int64_t local);

// strftime of microseconds since 1970-01-01, without a zone conversion.
std::string xclockFormat(std::int64_t time, const char* format);

// Time stamp of a log line: "2024-03-07 14:05:09.042" and the zone suffix. A fixed buffer, so that
// logging does not allocate.
using XclockStamp = std::array<char, 64>;
XclockStamp xclockStamp(std::int64_t local, const char* zoneSuffix);

// "+0530" or "-0500"; "-0000" for UTC.
std::string xclockZoneSuffix(std::int64_t local, std::int64_t utc);

#endif
