#include <cstdint>

#include "Event.h"
#include "xpl/XwindowsLean.h"

namespace {

constexpr std::int64_t kTicksPerMinute = 600'000'000;

std::int64_t ticksOf(const SYSTEMTIME& time) {
    FILETIME file{};
    ::SystemTimeToFileTime(&time, &file);
    return (static_cast<std::int64_t>(file.dwHighDateTime) << 32) | file.dwLowDateTime;
}

}  // namespace

LocalTime localTimeNow() {
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    ::GetSystemTime(&utc);
    if (!::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) local = utc;
    const std::int64_t offset = (ticksOf(local) - ticksOf(utc)) / kTicksPerMinute;
    return {local.wYear,   local.wMonth,  local.wDay,          local.wHour,
            local.wMinute, local.wSecond, local.wMilliseconds, static_cast<int>(offset)};
}
