// Reading and writing the lines of a configuration file.
#include "conf/ConfText.h"

#include <algorithm>

#include "xpl/Xbytes.h"

namespace {

constexpr std::string_view kBeforeValue = "=\"";
constexpr std::string_view kAfterValue = "\"\n";

char* copyTo(char* to, std::string_view text) { return std::copy(text.begin(), text.end(), to); }

std::string_view untilNul(std::string_view text) { return text.substr(0, xbytesFind<'\0'>(text)); }

// Like xbytesFind, but also notes a NUL before the match.
template <char... Wanted>
std::size_t findNotingNul(std::string_view text, std::size_t at, bool& hasNul) {
    const std::size_t found = xbytesFind<'\0', Wanted...>(text, at);
    if (found == std::string_view::npos || text[found] != '\0') return found;
    hasNul = true;
    return xbytesFind<Wanted...>(text, found + 1);
}

int lengthOfLine(std::string_view key, std::string_view writtenValue) {
    const std::size_t length =
        key.size() + kBeforeValue.size() + writtenValue.size() + kAfterValue.size();
    return length > CONF_LINE_SIZE ? -1 : static_cast<int>(length);
}

}  // namespace

ConfRead ConfTextReader::next(ConfEntry& entry) {
    if (rest_.empty()) return ConfRead::End;
    entry.hasNul = false;
    const std::size_t equals = findNotingNul<'=', '\n'>(rest_, 0, entry.hasNul);
    const bool hasKey = equals != std::string_view::npos && rest_[equals] == '=';
    const std::size_t end = hasKey ? findNotingNul<'\n'>(rest_, equals + 1, entry.hasNul) : equals;
    const std::string_view line = rest_.substr(0, end);
    rest_ = end == std::string_view::npos ? std::string_view{} : rest_.substr(end + 1);
    entry.line = line;
    if (!hasKey || line.size() > CONF_LINE_SIZE) return ConfRead::Malformed;
    entry.key = line.substr(0, equals);
    // A line that ends one character after its "=" has no last character to drop.
    const std::size_t start = equals + kBeforeValue.size();
    const std::size_t length = start < line.size() ? line.size() - 1 - start : 0;
    entry.value = line.substr(start, length);
    if (entry.hasNul) entry.value = untilNul(entry.value);
    return ConfRead::Entry;
}

int confLineLength(std::string_view key, std::string_view value) {
    return lengthOfLine(key, untilNul(value));
}

XErr confCheckEntry(std::string_view key, std::string_view value) {
    if (xbytesFind<'\n', '=', '\0'>(key) != std::string_view::npos) return XERR_INVAL;
    const std::size_t end = xbytesFind<'\n', '\0'>(value);
    if (end != std::string_view::npos && value[end] == '\n') return XERR_INVAL;
    return confCheckReadEntry(key, value.substr(0, end));
}

XErr confCheckReadEntry(std::string_view key, std::string_view value) {
    const int length = lengthOfLine(key, value);
    const bool fits = length >= 0 && length < static_cast<int>(CONF_LINE_SIZE);
    return fits ? XERR_SUCCESS : XERR_2BIG;
}

char* confEndLine(char* afterKey, std::string_view value) {
    return copyTo(copyTo(copyTo(afterKey, kBeforeValue), untilNul(value)), kAfterValue);
}
