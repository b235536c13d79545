#include "shared/DisplayWidth.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>

#include "shared/DisplayWidthTable.h"
#include "xpl/Xerr.h"
#include "xpl/Xtext.h"

namespace {

template <std::size_t N>
bool isIn(const WidthRange (&ranges)[N], std::uint32_t character) {
    const WidthRange* const range = std::lower_bound(
        std::begin(ranges), std::end(ranges), character,
        [](const WidthRange& item, std::uint32_t value) { return item.last < value; });
    return range != std::end(ranges) && range->first <= character;
}

std::size_t widthOf(std::uint32_t character) {
    if (isIn(kZeroWidth, character)) return 0;
    return isIn(kDoubleWidth, character) ? 2 : 1;
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
