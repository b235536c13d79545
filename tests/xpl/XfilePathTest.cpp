#include "support/TestHeaders.h"
#include "xpl/Xfile.h"

namespace {

// Expects these folders of a path, each in its long form.
void expectChain(std::wstring_view path, const std::vector<std::wstring>& chain) {
    EXPECT_EQ(xfileFolderChain(path), chain) << std::wstring(path);
}

// An absolute path of this many characters.
std::wstring pathOf(std::size_t length, std::wstring path = LR"(C:\)") {
    return path.append(length - path.size(), L'n');
}

constexpr std::size_t kLengths[] = {247, 248, 249, 1000};

}  // namespace

TEST(XfilePath, TheFolderPartEndsAtTheLastBackslash) {
    EXPECT_EQ(xfileFolderPart("C:\\Data\\Logs/Player.log"), "C:\\Data");
    EXPECT_EQ(xfileFolderPart("C:\\a"), "C:");
    EXPECT_EQ(xfileFolderPart("Logs/Player.log"), "");
    EXPECT_EQ(xfileFolderPart("name"), "");
    EXPECT_EQ(xfileFolderPart(""), "");
}

TEST(XfilePath, FoldersOfADrive) {
    expectChain(LR"(C:\a\b)", {LR"(\\?\C:\a)", LR"(\\?\C:\a\b)"});
    expectChain(LR"(C:\a\)", {LR"(\\?\C:\a)"});
    expectChain(LR"(C:\\a)", {LR"(\\?\C:\a)"});
}

TEST(XfilePath, ARootHasNothingToCreate) {
    expectChain(LR"(C:\)", {});
    expectChain(LR"(\\server\share)", {});
    expectChain(LR"(\\server\share\)", {});
    expectChain(LR"(\\?\C:\)", {});
}

TEST(XfilePath, FoldersOfAShare) {
    expectChain(LR"(\\server\share\a\b)",
                {LR"(\\?\UNC\server\share\a)", LR"(\\?\UNC\server\share\a\b)"});
}

TEST(XfilePath, AServerOrShareMayHaveNoName) {
    expectChain(LR"(\\\share\a)", {LR"(\\?\UNC\\share\a)"});
    expectChain(LR"(\\server\\a\b)", {LR"(\\?\UNC\server\\a)", LR"(\\?\UNC\server\\a\b)"});
}

TEST(XfilePath, FoldersOfALongPathKeepItsPrefix) {
    expectChain(LR"(\\?\C:\a)", {LR"(\\?\C:\a)"});
    expectChain(LR"(\\?\UNC\server\share\a)", {LR"(\\?\UNC\server\share\a)"});
}

TEST(XfilePath, TheRootOfSharesIgnoresCase) {
    expectChain(LR"(\\?\unc\server\share\a)", {LR"(\\?\UNC\server\share\a)"});
    expectChain(LR"(\\?\Unc\server\share)", {});
    expectChain(LR"(\\?\unC)", {});
    expectChain(LR"(\\?\UND\a)", {LR"(\\?\UND\a)"});
    expectChain(LR"(\\?\UN)", {});
}

TEST(XfilePath, AFolderThatOnlyLooksLikeTheRootOfSharesIsAFolder) {
    for (const wchar_t* path : {LR"(\\?\abc\server\share)", LR"(\\?\und\server\share)",
                                LR"(\\?\5.#\server\share)", LR"(\\?\unc|server\share)"}) {
        const std::vector<std::wstring> chain = xfileFolderChain(path);
        ASSERT_FALSE(chain.empty()) << path;
        EXPECT_EQ(chain.back(), path);
    }
}

TEST(XfilePath, FoldersOfADeviceAreThoseOfALongPath) {
    expectChain(LR"(\\.\C:\)", {});
    expectChain(LR"(\\.\C:\a\b)", {LR"(\\?\C:\a)", LR"(\\?\C:\a\b)"});
    expectChain(LR"(\\.\unc\server\share\a)", {LR"(\\?\UNC\server\share\a)"});
}

TEST(XfilePath, AServerWithoutAShareHasNothingToCreate) {
    expectChain(LR"(\\server)", {});
    expectChain(LR"(\\?\UNC\server)", {});
}

TEST(XfilePath, APathOf247CharactersStaysAsItIs) {
    EXPECT_EQ(xfileWindowsPath(pathOf(247), pathOf(247)), pathOf(247));
    EXPECT_EQ(xfileWindowsPath(L"C:/./n", LR"(C:\n)"), L"C:/./n");
    EXPECT_EQ(xfileWindowsPath(LR"(n\..\..\m)", pathOf(247)), LR"(n\..\..\m)");
    EXPECT_EQ(xfileWindowsPath(L"//server/share/n", pathOf(247, LR"(\\server\share\)")),
              L"//server/share/n");
    EXPECT_EQ(xfileWindowsPath(pathOf(300), pathOf(247)), pathOf(300));
    EXPECT_EQ(xfileWindowsPath(L"", L""), L"");
}

TEST(XfilePath, APathFrom248CharactersOnIsMadeLong) {
    for (const std::size_t length : {248u, 249u, 1000u}) {
        EXPECT_EQ(xfileWindowsPath(pathOf(length), pathOf(length)), LR"(\\?\)" + pathOf(length));
    }
}

TEST(XfilePath, AShareFrom248CharactersOnIsMadeLong) {
    const std::wstring share = pathOf(248, LR"(\\server\share\)");
    EXPECT_EQ(xfileWindowsPath(share, share), LR"(\\?\UNC\)" + share.substr(2));
}

TEST(XfilePath, TheAbsoluteFormIsMadeLong) {
    for (const wchar_t* path :
         {L"n", LR"(.\n)", LR"(..\n)", L"C:n", L"C:/n", LR"(\n)", L"/m/../n", L""}) {
        EXPECT_EQ(xfileWindowsPath(path, pathOf(248)), LR"(\\?\)" + pathOf(248)) << path;
    }
}

TEST(XfilePath, ALongOrDevicePathStaysAsItIs) {
    for (const wchar_t* prefix : {LR"(\\?\C:\)", LR"(\\?\UNC\server\share\)", LR"(\\.\C:\)"}) {
        for (const std::size_t length : kLengths) {
            const std::wstring path = pathOf(length, prefix);
            EXPECT_EQ(xfileWindowsPath(path, path), path);
        }
    }
    EXPECT_EQ(xfileWindowsPath(LR"(\\?\C:/a/../n)", pathOf(248, LR"(\\?\C:\)")),
              LR"(\\?\C:/a/../n)");
}

TEST(XfilePath, AnAbsoluteFormOfADeviceIsUsed) {
    const std::wstring device = pathOf(248, LR"(\\.\C:\)");
    EXPECT_EQ(xfileWindowsPath(L"//./C:/n", device), device);
    const std::wstring made = pathOf(248, LR"(\\?\C:\)");
    EXPECT_EQ(xfileWindowsPath(L"//?/C:/n", made), made);
}
