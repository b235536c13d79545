// Copying files with attributes of Windows.
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "utl/UtlCopy.h"

namespace {

class UtlCopyAttributesTest : public ::testing::Test {
 protected:
    UtlCopyAttributesTest() {
        folder.makeFolder("source\\sub");
        folder.makeFolder("destination");
        folder.write("source\\a", "new");
        folder.write("source\\sub\\b", "new");
    }

    // False if the file system does not keep the attribute.
    bool set(const std::string& name, DWORD attribute) const {
        const std::wstring path = wideForTests(folder / name);
        EXPECT_TRUE(::SetFileAttributesW(path.c_str(), attribute));
        return (::GetFileAttributesW(path.c_str()) & attribute) != 0;
    }

    TempFolder folder;
};

}  // namespace

TEST_F(UtlCopyAttributesTest, AReadOnlyFileInAnExistingSubfolderIsRemovedToo) {
    folder.write("destination\\sub\\locked", "old");
    ASSERT_TRUE(set("destination\\sub\\locked", FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(utlCopyRecursive(folder / "source", folder / "destination"), 0);
    EXPECT_FALSE(folder.has("destination\\sub\\locked"));
    EXPECT_EQ(folder.read("destination\\sub\\b"), "new");
}

TEST_F(UtlCopyAttributesTest, AFileWhoseNameHasNoUtf8IsCopied) {
    const std::wstring name = L"\\\xD800y";
    const std::wstring from = wideForTests(folder / "source") + name;
    const std::wstring to = wideForTests(folder / "destination") + name;
    const HANDLE made = ::CreateFileW(from.c_str(), GENERIC_WRITE, /*dwShareMode=*/0, nullptr,
                                      CREATE_NEW, FILE_ATTRIBUTE_NORMAL, /*hTemplateFile=*/nullptr);
    if (made == INVALID_HANDLE_VALUE) {
        GTEST_SKIP() << "needs Windows, whose names are any UTF-16 units";
    }
    ::CloseHandle(made);
    EXPECT_EQ(utlCopyRecursive(folder / "source", folder / "destination"), 0);
    EXPECT_NE(::GetFileAttributesW(to.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(UtlCopyAttributesTest, HiddenFilesAndFoldersAreLeftOut) {
    folder.write("source\\hidden", "new");
    for (const char* name : {"source\\hidden", "source\\sub"}) {
        if (!set(name, FILE_ATTRIBUTE_HIDDEN)) {
            GTEST_SKIP() << "needs a file system that keeps the attribute";
        }
    }
    EXPECT_EQ(utlCopyRecursive(folder / "source", folder / "destination"), 0);
    EXPECT_EQ(folder.read("destination\\a"), "new");
    EXPECT_FALSE(folder.has("destination\\hidden"));
    EXPECT_FALSE(folder.has("destination\\sub"));
}
