// The clock of POSIX.
#include <time.h>

#include "xpl/Xclock.h"

namespace {

constexpr std::int64_t kMicrosPerSecond = 1'000'000;

}  // namespace

std::int64_t xclockUtc() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec * kMicrosPerSecond + now.tv_nsec / 1000;
}

std::int64_t xclockOffset(std::int64_t utcSeconds) {
    const time_t seconds = utcSeconds;
    tm local{};
    ::localtime_r(&seconds, &local);
    return ::timegm(&local) - utcSeconds;
}

std::int64_t xclockLocalToUtc(std::int64_t local) {
    const time_t seconds = local / kMicrosPerSecond;
    tm fields{};
    ::gmtime_r(&seconds, &fields);
    ::tzset();
    fields.tm_isdst = ::daylight;
    return ::mktime(&fields) * kMicrosPerSecond + local % kMicrosPerSecond;
}

std::string xclockFormat(std::int64_t time, const char* format) {
    const time_t seconds = time / kMicrosPerSecond;
    tm fields{};
    // End of the Universal C Runtime's calendar, in January 3001.
    constexpr std::int64_t kLast = 0x7'9358'2AFF;
    if (seconds > kLast || ::gmtime_r(&seconds, &fields) == nullptr) return {};
    char text[64];
    return std::string(text, ::strftime(text, sizeof text, format, &fields));
}
