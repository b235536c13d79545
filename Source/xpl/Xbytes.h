#ifndef XPL_XBYTES_H
#define XPL_XBYTES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define XBYTES_SSE2 1
#endif

// Work on texts of a few dozen bytes, done in place. A call into the C runtime, which is another
// DLL, takes longer than the work itself, and its searches go byte by byte where it is Wine's.

namespace xbytes_detail {

// The two words of `Word`'s size at the start and at the end of `size` bytes cover all of them.
template <typename Word>
inline bool sameEnds(const char* a, const char* b, std::size_t size) noexcept {
    Word firstA, firstB, lastA, lastB;
    std::memcpy(&firstA, a, sizeof(Word));
    std::memcpy(&firstB, b, sizeof(Word));
    std::memcpy(&lastA, a + size - sizeof(Word), sizeof(Word));
    std::memcpy(&lastB, b + size - sizeof(Word), sizeof(Word));
    return firstA == firstB && lastA == lastB;
}

template <typename Word>
inline void copyEnds(char* to, const char* from, std::size_t size) noexcept {
    Word first, last;
    std::memcpy(&first, from, sizeof(Word));
    std::memcpy(&last, from + size - sizeof(Word), sizeof(Word));
    std::memcpy(to, &first, sizeof(Word));
    std::memcpy(to + size - sizeof(Word), &last, sizeof(Word));
}

template <char... Wanted>
inline std::size_t findOneByOne(std::string_view text, std::size_t at) noexcept {
    while (at < text.size() && ((text[at] != Wanted) && ...)) ++at;
    return at < text.size() ? at : std::string_view::npos;
}

}  // namespace xbytes_detail

#if defined(XBYTES_SSE2)
namespace xbytes_detail {

constexpr std::size_t kBlock = sizeof(__m128i);

// A bit for each byte of the block that is one of the wanted ones.
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
    std::size_t place = 0;
    for (; (bits & 1) == 0; bits >>= 1) ++place;
    return place;
#endif
}

}  // namespace xbytes_detail
#endif

// Place of the first byte from `at` on that is one of these, or npos.
template <char... Wanted>
inline std::size_t xbytesFind(std::string_view text, std::size_t at = 0) noexcept {
#if defined(XBYTES_SSE2)
    using namespace xbytes_detail;
    for (; at + kBlock <= text.size(); at += kBlock) {
        const unsigned found = matches<Wanted...>(text.data() + at);
        if (found != 0) return at + lowestBit(found);
    }
    if (at < text.size() && text.size() >= kBlock) {
        // The last block, of which the part before `at` does not count.
        const std::size_t start = text.size() - kBlock;
        const unsigned found = matches<Wanted...>(text.data() + start) >> (at - start);
        return found == 0 ? std::string_view::npos : at + lowestBit(found);
    }
#endif
    return xbytes_detail::findOneByOne<Wanted...>(text, at);
}

inline bool xbytesSame(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    const char* one = a.data();
    const char* other = b.data();
    std::size_t size = a.size();
    for (; size > 2 * sizeof(std::uint64_t); size -= sizeof(std::uint64_t)) {
        if (!xbytes_detail::sameEnds<std::uint64_t>(one, other, sizeof(std::uint64_t))) {
            return false;
        }
        one += sizeof(std::uint64_t);
        other += sizeof(std::uint64_t);
    }
    if (size >= sizeof(std::uint64_t)) {
        return xbytes_detail::sameEnds<std::uint64_t>(one, other, size);
    }
    if (size >= sizeof(std::uint32_t)) {
        return xbytes_detail::sameEnds<std::uint32_t>(one, other, size);
    }
    for (; size > 0; --size) {
        if (one[size - 1] != other[size - 1]) return false;
    }
    return true;
}

// Order of two texts byte by byte, as unsigned numbers: below 0, 0 or above 0.
inline int xbytesCompare(std::string_view a, std::string_view b) noexcept {
    const std::size_t common = a.size() < b.size() ? a.size() : b.size();
    std::size_t at = 0;
    constexpr std::size_t kStep = sizeof(std::uint64_t);
    while (at + kStep <= common &&
           xbytes_detail::sameEnds<std::uint64_t>(a.data() + at, b.data() + at, kStep)) {
        at += kStep;
    }
    for (; at < common; ++at) {
        if (a[at] == b[at]) continue;
        return static_cast<unsigned char>(a[at]) < static_cast<unsigned char>(b[at]) ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

// A number that names rarely share; every byte counts.
inline std::size_t xbytesHash(std::string_view text) noexcept {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;  // 2^64 by the golden ratio
    constexpr std::size_t kStep = sizeof(std::uint64_t);
    std::uint64_t hash = text.size() * kMultiplier;
    const auto mix = [&hash](const char* bytes, std::size_t size) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, size);
        hash = (hash ^ word) * kMultiplier;
        hash ^= hash >> 32;
    };
    std::size_t at = 0;
    for (; at + kStep <= text.size(); at += kStep) mix(text.data() + at, kStep);
    if (at < text.size() && at > 0) {
        mix(text.data() + text.size() - kStep, kStep);  // some bytes once more
    } else {
        for (; at < text.size(); ++at) mix(text.data() + at, 1);
    }
    hash *= kMultiplier;  // so that the last bytes reach the low bits too
    return static_cast<std::size_t>(hash ^ hash >> 32);
}

inline bool xbytesStartsWith(std::string_view text, std::string_view start) noexcept {
    return text.size() >= start.size() && xbytesSame(text.substr(0, start.size()), start);
}

// Copies a text to where room for it is, not overlapping, and returns the place behind it.
inline char* xbytesCopy(char* to, std::string_view text) noexcept {
    const char* from = text.data();
    std::size_t size = text.size();
    for (; size > 2 * sizeof(std::uint64_t); size -= sizeof(std::uint64_t)) {
        std::memcpy(to, from, sizeof(std::uint64_t));
        to += sizeof(std::uint64_t);
        from += sizeof(std::uint64_t);
    }
    if (size >= sizeof(std::uint64_t)) {
        xbytes_detail::copyEnds<std::uint64_t>(to, from, size);
    } else if (size >= sizeof(std::uint32_t)) {
        xbytes_detail::copyEnds<std::uint32_t>(to, from, size);
    } else {
        for (std::size_t i = 0; i < size; ++i) to[i] = from[i];
    }
    return to + size;
}

#endif
