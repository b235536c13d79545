// Level specifications. The thresholds are the result of all items before the first malformed one.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Check.h"
#include "xpl/Xlog.h"

namespace {

constexpr const char* kTags[] = {
#define TAG_NAME(tag) #tag,
    XLOG_TAGS(TAG_NAME)
#undef TAG_NAME
};
constexpr std::size_t kTagCount = std::size(kTags);

using Thresholds = std::array<int, kTagCount>;

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

// False for a malformed item.
bool applyPlainly(const std::string& levels, Thresholds& thresholds) {
    for (const std::string& item : split(levels, ' ')) {
        if (item.empty()) continue;
        const std::vector<std::string> parts = split(item, ':');
        if (parts.size() != 2 || parts[1].empty()) return false;
        const std::string letters = "EWIDV";
        const std::size_t level = letters.find(parts[1][0]);
        if (level == std::string::npos) return false;
        for (std::size_t i = 0; i < kTagCount; ++i) {
            if (parts[0] == "*" || parts[0] == kTags[i]) thresholds[i] = static_cast<int>(level);
        }
    }
    return true;
}

Thresholds measured() {
    Thresholds thresholds{};
    for (std::size_t i = 0; i < kTagCount; ++i) {
        int level = -1;
        while (level < XLOG_VERBOSE && xlogIsEnabled({static_cast<XlogTag>(i), ""}, level + 1)) {
            ++level;
        }
        thresholds[i] = level;
    }
    return thresholds;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const XErr started = xlogLibInit(nullptr, "/dev/null");
    check(started == XERR_SUCCESS, "the log starts");
    check(xlogSetLevels("*:I XMEM:D") == XERR_SUCCESS, "the default levels");
    Thresholds expected = measured();
    const std::string levels(textOf(data, size));
    const bool wellFormed = applyPlainly(levels, expected);
    check(xlogSetLevels(levels) == (wellFormed ? XERR_SUCCESS : XERR_INVAL), "the status");
    check(measured() == expected, "the thresholds");
    return 0;
}
