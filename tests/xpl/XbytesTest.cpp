#include "support/TestHeaders.h"
#include "xpl/Xbytes.h"

namespace {

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
