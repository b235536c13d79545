#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "xpl/Xbytes.h"

namespace {

int sign(int number) { return number < 0 ? -1 : number > 0 ? 1 : 0; }

// Of every length around the steps that the functions take, at every place in a word.
template <typename Check>
void forEachText(Check check) {
    std::mt19937 random(11);
    std::string bytes(128, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    for (std::size_t start = 0; start < 16; ++start) {
        for (std::size_t size = 0; size < 70; ++size) {
            check(std::string_view(bytes).substr(start, size));
        }
    }
}

}  // namespace

TEST(Xbytes, FindsWhatTheLibraryFinds) {
    forEachText([](std::string_view text) {
        // Every place of the text holds the byte once, and there may be others.
        std::string own(text);
        for (std::size_t place = 0; place < own.size(); ++place) {
            const char before = std::exchange(own[place], '=');
            for (const std::size_t at : {std::size_t{0}, place, place + 1, own.size() + 1}) {
                ASSERT_EQ(xbytesFind<'='>(own, at), own.find('=', at));
                ASSERT_EQ((xbytesFind<'=', '\0', '\x80'>(own, at)),
                          own.find_first_of(std::string_view("=\0\x80", 3), at));
            }
            own[place] = before;
        }
        ASSERT_EQ(xbytesFind<'x'>(text), text.find('x'));
    });
}

TEST(Xbytes, NamesThatDifferLittleHaveOtherHashes) {
    constexpr std::size_t kSlots = 16'384;  // as a table of so many names has at least
    std::vector<int> used(kSlots);
    for (int number = 0; number < 8000; ++number) {
        const std::string digits = std::to_string(100'000 + number).substr(1);
        ++used[xbytesHash("Nougat64_" + digits) % kSlots];
    }
    EXPECT_LE(*std::max_element(used.begin(), used.end()), 8);
}

TEST(Xbytes, EveryByteCountsForTheHash) {
    forEachText([](std::string_view text) {
        std::string other(text);
        for (char& byte : other) {
            byte = static_cast<char>(byte ^ 1);
            ASSERT_NE(xbytesHash(text), xbytesHash(other));
            byte = static_cast<char>(byte ^ 1);
        }
        ASSERT_NE(xbytesHash(text), xbytesHash(other + '\0'));
    });
}

TEST(Xbytes, ADifferenceAtAnyPlaceIsSeen) {
    forEachText([](std::string_view text) {
        std::string other(text);
        ASSERT_TRUE(xbytesSame(text, other));
        ASSERT_EQ(xbytesCompare(text, other), 0);
        for (char& byte : other) {
            byte = static_cast<char>(byte ^ 0x80);
            ASSERT_FALSE(xbytesSame(text, other));
            ASSERT_EQ(sign(xbytesCompare(text, other)), sign(text.compare(other)));
            ASSERT_EQ(sign(xbytesCompare(other, text)), sign(other.compare(text)));
            byte = static_cast<char>(byte ^ 0x80);
        }
    });
}

TEST(Xbytes, AShorterTextComesFirstAndIsAStart) {
    forEachText([](std::string_view text) {
        const std::string longer = std::string(text) + '\0';
        ASSERT_FALSE(xbytesSame(text, longer));
        ASSERT_LT(xbytesCompare(text, longer), 0);
        ASSERT_GT(xbytesCompare(longer, text), 0);
        ASSERT_TRUE(xbytesStartsWith(longer, text));
        ASSERT_FALSE(xbytesStartsWith(text, longer));
    });
}

TEST(Xbytes, CopiesEveryByteAndNoOther) {
    forEachText([](std::string_view text) {
        std::string to(text.size() + 2, '#');
        ASSERT_EQ(xbytesCopy(&to[1], text), &to[1] + text.size());
        ASSERT_EQ(to, "#" + std::string(text) + "#");
    });
}
