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

// Puts the first of the wanted bytes at each offset in turn. The text may contain others.
template <char... Wanted>
void expectTheStandardLibrarysResult() {
    constexpr char kWanted[]{Wanted...};
    const std::string_view wanted(kWanted, sizeof kWanted);
    forEachText([&](std::string_view text) {
        std::string own(text);
        ASSERT_EQ(xbytesFind<Wanted...>(own), own.find_first_of(wanted));
        for (std::size_t offset = 0; offset < own.size(); ++offset) {
            const char before = std::exchange(own[offset], kWanted[0]);
            for (const std::size_t at : {std::size_t{0}, offset, offset + 1, own.size() + 1}) {
                ASSERT_EQ(xbytesFind<Wanted...>(own, at), own.find_first_of(wanted, at));
            }
            own[offset] = before;
        }
    });
}

}  // namespace

TEST(Xbytes, FindsWhatTheStandardLibraryFinds) {
    expectTheStandardLibrarysResult<'='>();
    expectTheStandardLibrarysResult<'=', '\0', '\x80'>();
}

// Each set of bytes is compiled on its own.
TEST(Xbytes, FindsTheBytesThatSeparateTheConfigurationsLines) {
    expectTheStandardLibrarysResult<'\0'>();
    expectTheStandardLibrarysResult<'\n'>();
    expectTheStandardLibrarysResult<'=', '\n'>();
    expectTheStandardLibrarysResult<'\n', '\0'>();
    expectTheStandardLibrarysResult<'\0', '\n'>();
    expectTheStandardLibrarysResult<'\0', '=', '\n'>();
    expectTheStandardLibrarysResult<'\n', '=', '\0'>();
}
