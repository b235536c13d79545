// Conversion between UTF-8 and UTF-16. Each UTF-16 unit is one wchar_t, as on Windows, so that code
// for wide strings behaves the same.
#include <cstddef>
#include <cstdint>

#include "xpl/Xtext.h"

namespace {

constexpr std::int32_t kNoUnicodeTranslation = 1113;
constexpr std::uint32_t kReplacement = 0xFFFD;

bool isHigh(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLow(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// Returns 0 past the end.
std::uint32_t unitAt(std::wstring_view wide, std::size_t at) {
    if (at >= wide.size()) return 0;
    return static_cast<std::uint32_t>(wide[at]);
}

// Number of continuation bytes after a lead byte; -1 when it is not a lead byte.
int followers(unsigned char first) {
    if (first < 0x80) return 0;
    if (first >= 0xC2 && first <= 0xDF) return 1;
    if (first >= 0xE0 && first <= 0xEF) return 2;
    if (first >= 0xF0 && first <= 0xF4) return 3;
    return -1;
}

// Removes one character from the text. Returns false at invalid UTF-8.
bool take(std::string_view& text, std::uint32_t& character) {
    constexpr std::uint32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text.front());
    const int count = followers(first);
    if (count < 0 || text.size() <= static_cast<std::size_t>(count)) return false;
    character = count == 0 ? first : first & (0x3Fu >> count);
    for (int i = 1; i <= count; ++i) {
        const auto byte = static_cast<unsigned char>(text[static_cast<std::size_t>(i)]);
        if ((byte & 0xC0) != 0x80) return false;
        character = character << 6 | (byte & 0x3Fu);
    }
    text.remove_prefix(static_cast<std::size_t>(count) + 1);
    return character >= kSmallest[count] && character <= 0x10FFFF && !isHigh(character) &&
           !isLow(character);
}

void append(std::wstring& wide, std::uint32_t character) {
    if (character < 0x10000) {
        wide += static_cast<wchar_t>(character);
        return;
    }
    wide += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
    wide += static_cast<wchar_t>(0xDC00 + (character & 0x3FF));
}

void append(std::string& text, std::uint32_t character) {
    const auto put = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto follow = [&](int shift) { put(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | character >> 6);
        follow(0);
    } else if (character < 0x10000) {
        put(0xE0 | character >> 12);
        follow(6);
        follow(0);
    } else {
        put(0xF0 | character >> 18);
        follow(12);
        follow(6);
        follow(0);
    }
}

}  // namespace

XErr xtextToWide(std::string_view text, std::wstring& wide) {
    wide.clear();
    while (!text.empty()) {
        std::uint32_t character = 0;
        if (!take(text, character)) {
            wide.clear();
            return xerrFromWindows(kNoUnicodeTranslation);
        }
        append(wide, character);
    }
    return XERR_SUCCESS;
}

std::string xtextToUtf8(std::wstring_view wide) {
    std::string text;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const std::uint32_t unit = unitAt(wide, i);
        const std::uint32_t next = unitAt(wide, i + 1);
        if (isHigh(unit) && isLow(next)) {
            append(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            ++i;
        } else {
            append(text, isHigh(unit) || isLow(unit) ? kReplacement : unit);
        }
    }
    return text;
}
