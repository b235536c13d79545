#include <gtest/gtest.h>

#include <random>
#include <string>

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
        for (const char wanted :
             {text.empty() ? 'x' : text.front(), text.empty() ? 'x' : text.back(), '\0'}) {
            for (std::size_t at = 0; at <= text.size() + 1; ++at) {
                ASSERT_EQ(xbytesFind(text, wanted, at), text.find(wanted, at));
            }
        }
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
