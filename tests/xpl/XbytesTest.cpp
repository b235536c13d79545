#include "support/TestHeaders.h"
#include "xpl/Xbytes.h"

namespace {

// Texts of every length up to several steps of the functions, at every alignment.
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

TEST(Xbytes, FindsWhatTheStandardLibraryFinds) {
    forEachText([](std::string_view text) {
        // The byte is at each offset in turn. The text may contain others.
        std::string own(text);
        for (std::size_t offset = 0; offset < own.size(); ++offset) {
            const char before = std::exchange(own[offset], '=');
            for (const std::size_t at : {std::size_t{0}, offset, offset + 1, own.size() + 1}) {
                ASSERT_EQ(xbytesFind<'='>(own, at), own.find('=', at));
                ASSERT_EQ((xbytesFind<'=', '\0', '\x80'>(own, at)),
                          own.find_first_of(std::string_view("=\0\x80", 3), at));
            }
            own[offset] = before;
        }
        ASSERT_EQ(xbytesFind<'x'>(text), text.find('x'));
    });
}
