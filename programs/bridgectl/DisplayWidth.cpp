#include "DisplayWidth.h"

#include <cstdint>
#include <string>

#include "xpl/Xtext.h"

namespace {

struct Range {
    std::uint32_t first;
    std::uint32_t last;
};

// From the Unicode Character Database, version 15: general categories Mn, Me and Cf.
constexpr Range kZero[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F},
    {0x0670, 0x0670}, {0x06D6, 0x06DC}, {0x093C, 0x093C}, {0x0941, 0x0948}, {0x094D, 0x094D},
    {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},
    {0x200B, 0x200F}, {0x202A, 0x202E}, {0x2060, 0x2064}, {0x20D0, 0x20FF}, {0x302A, 0x302D},
    {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}, {0xE0100, 0xE01EF},
};

// The same version: East Asian Width W and F.
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2E80, 0x303E},   {0x3041, 0x33FF},
    {0x3400, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97C},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

template <std::size_t N>
bool isIn(const Range (&ranges)[N], std::uint32_t character) {
    for (const Range& range : ranges) {
        if (character >= range.first && character <= range.last) return true;
    }
    return false;
}

std::size_t widthOf(std::uint32_t character) {
    if (isIn(kZero, character)) return 0;
    return isIn(kWide, character) ? 2 : 1;
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
    std::wstring wide;
    if (xtextToWide(text, wide) != XERR_SUCCESS) return text.size();
    std::size_t width = 0;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        std::uint32_t character = wide[i];
        if (character >= 0xD800 && character <= 0xDBFF && i + 1 < wide.size()) {
            character = 0x10000 + ((character - 0xD800) << 10) + (wide[++i] - 0xDC00u);
        }
        width += widthOf(character);
    }
    return width;
}
