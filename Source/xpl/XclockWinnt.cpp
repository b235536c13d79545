// The clock of the Universal C Runtime.
#include <sys/timeb.h>
#include <time.h>

#include "xpl/Xclock.h"

namespace {

constexpr std::int64_t kMicrosPerSecond = 1'000'000;

}  // namespace

std::int64_t xclockNow() {
    __timeb64 now{};
    tm local{};
    _ftime64_s(&now);
    _localtime64_s(&local, &now.time);
    return _mkgmtime64(&local) * kMicrosPerSecond + now.millitm * 1000;
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
    _gmtime64_s(&fields, &seconds);
    char text[64];
    return std::string(text, strftime(text, sizeof text, format, &fields));
}
