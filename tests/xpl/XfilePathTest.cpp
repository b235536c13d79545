#include "support/TestHeaders.h"
#include "xpl/Xfile.h"

namespace {

using Chain = std::vector<std::wstring>;

// An absolute path of that many characters.
std::wstring pathOf(std::size_t length, std::wstring path = L"C:\\") {
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
    EXPECT_EQ(xfileFolderChain(L"C:\\a\\b"), (Chain{L"\\\\?\\C:\\a", L"\\\\?\\C:\\a\\b"}));
    EXPECT_EQ(xfileFolderChain(L"C:\\a\\"), (Chain{L"\\\\?\\C:\\a"}));
    EXPECT_EQ(xfileFolderChain(L"C:\\\\a"), (Chain{L"\\\\?\\C:\\a"}));
}

TEST(XfilePath, ARootHasNothingToCreate) {
    EXPECT_EQ(xfileFolderChain(L"C:\\"), Chain{});
    EXPECT_EQ(xfileFolderChain(L"\\\\server\\share"), Chain{});
    EXPECT_EQ(xfileFolderChain(L"\\\\server\\share\\"), Chain{});
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\C:\\"), Chain{});
}

TEST(XfilePath, FoldersOfAShare) {
    EXPECT_EQ(xfileFolderChain(L"\\\\server\\share\\a\\b"),
              (Chain{L"\\\\?\\UNC\\server\\share\\a", L"\\\\?\\UNC\\server\\share\\a\\b"}));
}

TEST(XfilePath, AServerOrShareWithoutANameIsOneAllTheSame) {
    EXPECT_EQ(xfileFolderChain(L"\\\\\\share\\a"), (Chain{L"\\\\?\\UNC\\\\share\\a"}));
    EXPECT_EQ(xfileFolderChain(L"\\\\server\\\\a\\b"),
              (Chain{L"\\\\?\\UNC\\server\\\\a", L"\\\\?\\UNC\\server\\\\a\\b"}));
}

TEST(XfilePath, FoldersOfALongPathKeepItsPrefix) {
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\C:\\a"), (Chain{L"\\\\?\\C:\\a"}));
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\UNC\\server\\share\\a"),
              (Chain{L"\\\\?\\UNC\\server\\share\\a"}));
}

TEST(XfilePath, TheRootOfSharesIsInAnyCase) {
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\unc\\server\\share\\a"),
              (Chain{L"\\\\?\\UNC\\server\\share\\a"}));
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\Unc\\server\\share"), Chain{});
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\unC"), Chain{});
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\UND\\a"), (Chain{L"\\\\?\\UND\\a"}));
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\UN"), Chain{});
}

TEST(XfilePath, AFolderThatOnlyLooksLikeTheRootOfSharesIsAFolder) {
    for (const wchar_t* path : {L"\\\\?\\abc\\server\\share", L"\\\\?\\und\\server\\share",
                                L"\\\\?\\5.#\\server\\share", L"\\\\?\\unc|server\\share"}) {
        const Chain chain = xfileFolderChain(path);
        ASSERT_FALSE(chain.empty()) << path;
        EXPECT_EQ(chain.back(), path);
    }
}

TEST(XfilePath, FoldersOfADeviceAreThoseOfALongPath) {
    EXPECT_EQ(xfileFolderChain(L"\\\\.\\C:\\"), Chain{});
    EXPECT_EQ(xfileFolderChain(L"\\\\.\\C:\\a\\b"), (Chain{L"\\\\?\\C:\\a", L"\\\\?\\C:\\a\\b"}));
    EXPECT_EQ(xfileFolderChain(L"\\\\.\\unc\\server\\share\\a"),
              (Chain{L"\\\\?\\UNC\\server\\share\\a"}));
}

TEST(XfilePath, AServerWithoutAShareHasNothingToCreate) {
    EXPECT_EQ(xfileFolderChain(L"\\\\server"), Chain{});
    EXPECT_EQ(xfileFolderChain(L"\\\\?\\UNC\\server"), Chain{});
}

TEST(XfilePath, APathOf247CharactersStaysAsItIs) {
    EXPECT_EQ(xfileWindowsPath(pathOf(247), pathOf(247)), pathOf(247));
    EXPECT_EQ(xfileWindowsPath(L"C:/./n", L"C:\\n"), L"C:/./n");
    EXPECT_EQ(xfileWindowsPath(L"n\\..\\..\\m", pathOf(247)), L"n\\..\\..\\m");
    EXPECT_EQ(xfileWindowsPath(L"//server/share/n", pathOf(247, L"\\\\server\\share\\")),
              L"//server/share/n");
    EXPECT_EQ(xfileWindowsPath(pathOf(300), pathOf(247)), pathOf(300));
    EXPECT_EQ(xfileWindowsPath(L"", L""), L"");
}

TEST(XfilePath, APathFrom248CharactersOnIsMadeLong) {
    for (const std::size_t length : {248u, 249u, 1000u}) {
        EXPECT_EQ(xfileWindowsPath(pathOf(length), pathOf(length)), L"\\\\?\\" + pathOf(length));
    }
}

TEST(XfilePath, AShareFrom248CharactersOnIsMadeLong) {
    const std::wstring share = pathOf(248, L"\\\\server\\share\\");
    EXPECT_EQ(xfileWindowsPath(share, share), L"\\\\?\\UNC\\" + share.substr(2));
}

TEST(XfilePath, TheAbsoluteFormIsWhatIsMadeLong) {
    for (const wchar_t* path :
         {L"n", L".\\n", L"..\\n", L"C:n", L"C:/n", L"\\n", L"/m/../n", L""}) {
        EXPECT_EQ(xfileWindowsPath(path, pathOf(248)), L"\\\\?\\" + pathOf(248)) << path;
    }
}

TEST(XfilePath, ALongOrDevicePathStaysAsItIs) {
    for (const wchar_t* prefix : {L"\\\\?\\C:\\", L"\\\\?\\UNC\\server\\share\\", L"\\\\.\\C:\\"}) {
        for (const std::size_t length : kLengths) {
            const std::wstring path = pathOf(length, prefix);
            EXPECT_EQ(xfileWindowsPath(path, path), path);
        }
    }
    EXPECT_EQ(xfileWindowsPath(L"\\\\?\\C:/a/../n", pathOf(248, L"\\\\?\\C:\\")),
              L"\\\\?\\C:/a/../n");
}

TEST(XfilePath, APathThatIsMadeADevicesIsHandedOverSo) {
    const std::wstring device = pathOf(248, L"\\\\.\\C:\\");
    EXPECT_EQ(xfileWindowsPath(L"//./C:/n", device), device);
    const std::wstring made = pathOf(248, L"\\\\?\\C:\\");
    EXPECT_EQ(xfileWindowsPath(L"//?/C:/n", made), made);
}
