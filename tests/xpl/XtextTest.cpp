#include "support/TestHeaders.h"
#include "xpl/Xtext.h"

namespace {

std::wstring toWide(std::string_view text) {
    std::wstring wide;
    EXPECT_EQ(xtextToWide(text, wide), 0);
    return wide;
}

}  // namespace

TEST(Xtext, ConvertsEveryPlane) {
    EXPECT_EQ(toWide(""), L"");
    EXPECT_EQ(toWide("Aé日"), L"Aé日");
    EXPECT_EQ(toWide("\xF0\x9F\x8E\xAE"), L"\xD83C\xDFAE");
    EXPECT_EQ(xtextToUtf8(L"Aé日\xD83C\xDFAE"), "Aé日\xF0\x9F\x8E\xAE");
    EXPECT_EQ(xtextToUtf8(L""), "");
}

TEST(Xtext, RefusesBytesThatAreNotUtf8) {
    std::wstring wide = L"old";
    for (const char* text : {"\xFF", "a\xC3", "\xC0\x80", "\xED\xA0\x80"}) {
        EXPECT_EQ(xtextToWide(text, wide), 101113) << text;
        EXPECT_EQ(wide, L"");
    }
}
