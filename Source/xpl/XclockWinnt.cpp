// The clock of the Universal C Runtime.
#include <time.h>

#include "xpl/Xclock.h"
#include "xpl/XwindowsLean.h"

namespace {

constexpr std::int64_t kMicrosPerSecond = 1'000'000;

// A FILETIME counts 100 nanoseconds since 1601.
constexpr std::int64_t kTicksPerMicro = 10;
constexpr std::int64_t kTicksTo1970 = 116'444'736'000'000'000;

}  // namespace

std::int64_t xclockUtc() {
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    const auto ticks =
        static_cast<std::int64_t>((std::uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime);
    return (ticks - kTicksTo1970) / kTicksPerMicro;
}

std::int64_t xclockOffset(std::int64_t utcSeconds) {
    const __time64_t seconds = utcSeconds;
    tm local{};
    _localtime64_s(&local, &seconds);
    return _mkgmtime64(&local) - utcSeconds;
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
    // After January 3001 there is no date, and formatting one would end the process.
    if (_gmtime64_s(&fields, &seconds) != 0) return {};
    char text[64];
    return std::string(text, strftime(text, sizeof text, format, &fields));
}
