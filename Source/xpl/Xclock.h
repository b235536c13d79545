#ifndef XPL_XCLOCK_H
#define XPL_XCLOCK_H

#include <array>
#include <cstdint>
#include <string>

// Local wall-clock time as microseconds since 1970-01-01, with a resolution of a millisecond.
std::int64_t xclockNow();

// The system's clock: UTC as microseconds since 1970-01-01, and local time less UTC, in seconds, at
// such a second.
std::int64_t xclockUtc();
std::int64_t xclockOffset(std::int64_t utcSeconds);

// UTC for such a local time. The zone's daylight rule is assumed to hold all year where the zone
// has one, so that the result is an hour off in some seasons.
std::int64_t xclockLocalToUtc(std::int64_t local);

// strftime of a count of microseconds since 1970-01-01, taken as it stands.
std::string xclockFormat(std::int64_t time, const char* format);

// Time stamp of a log line: "2024-03-07 14:05:09.042" and the zone suffix. In a buffer of its own:
// a line needs no heap.
using XclockStamp = std::array<char, 64>;
XclockStamp xclockStamp(std::int64_t local, const char* zoneSuffix);

// "+0530" or "-0500"; a zone at UTC itself counts as negative: "-0000".
std::string xclockZoneSuffix(std::int64_t local, std::int64_t utc);

#endif
