#include <gtest/gtest.h>

#include "xpl/Xfile.h"

namespace {

using Chain = std::vector<std::wstring>;

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
