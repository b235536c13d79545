// Texts of points in time; the clock itself is in XclockWinnt.cpp.
#include "xpl/Xclock.h"

#include <cstdio>

namespace {

constexpr std::int64_t kMicrosPerSecond = 1'000'000;

}  // namespace

XclockStamp xclockStamp(std::int64_t local, const char* zoneSuffix) {
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
