// The clock of the Universal C Runtime.
#include <time.h>

#include <atomic>

#include "xpl/Xclock.h"
#include "xpl/XwindowsLean.h"

namespace {

constexpr std::int64_t kMicrosPerSecond = 1'000'000;

// A FILETIME counts 100 nanoseconds since 1601.
constexpr std::int64_t kTicksPerMicro = 10;
constexpr std::int64_t kTicksTo1970 = 116'444'736'000'000'000;

std::int64_t utcMicros() {
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    const auto ticks =
        static_cast<std::int64_t>((std::uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime);
    return (ticks - kTicksTo1970) / kTicksPerMicro;
}

std::int64_t computeOffset(std::int64_t utcSeconds) {
    const __time64_t seconds = utcSeconds;
    tm local{};
    _localtime64_s(&local, &seconds);
    return _mkgmtime64(&local) - utcSeconds;
}

// Local time less UTC, in seconds. The zone's rules are asked once a second: a log writes many
// lines in one, and the question takes longer than the rest of a line. Second and offset share one
// word, so that no reader sees those of two writers.
std::int64_t offsetAt(std::int64_t utcSeconds) {
    // An offset is less than a day: 17 bits and a sign.
    constexpr std::int64_t kOffsets = std::int64_t{1} << 20;
    static std::atomic<std::int64_t> known{-1};
    const std::int64_t last = known.load(std::memory_order_relaxed);
    if (last >= 0 && last / kOffsets == utcSeconds) return last % kOffsets - kOffsets / 2;
    const std::int64_t offset = computeOffset(utcSeconds);
    known.store(utcSeconds * kOffsets + offset + kOffsets / 2, std::memory_order_relaxed);
    return offset;
}

}  // namespace

std::int64_t xclockNow() {
    constexpr std::int64_t kResolution = 1000;
    const std::int64_t utc = utcMicros() / kResolution * kResolution;
    return utc + offsetAt(utc / kMicrosPerSecond) * kMicrosPerSecond;
}

std::int64_t xclockLocalToUtc(std::int64_t local) {
    const __time64_t seconds = local / kMicrosPerSecond;
    tm fields{};
    _gmtime64_s(&fields, &seconds);
    _tzset();
    int hasDaylight = 0;
    _get_daylight(&hasDaylight);
    fields.tm_isdst = hasDaylight;
    return _mktime64(&fields) * kMicrosPerSecond + local % kMicrosPerSecond;
}

std::string xclockFormat(std::int64_t time, const char* format) {
    const __time64_t seconds = time / kMicrosPerSecond;
    tm fields{};
    // Behind January 3001 there is no date, and formatting one would end the process.
    if (_gmtime64_s(&fields, &seconds) != 0) return {};
    char text[64];
    return std::string(text, strftime(text, sizeof text, format, &fields));
}
