// The handles of files on Windows.
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "xpl/Xfile.h"

namespace {

constexpr XfileMode kModes[] = {XfileMode::ReadWrite, XfileMode::Append, XfileMode::WriteNew,
                                XfileMode::Update, XfileMode::Read};

bool isInheritable(const Xfile& file) {
    DWORD flags = 0;
    EXPECT_TRUE(::GetHandleInformation(file.handle(), &flags));
    return (flags & HANDLE_FLAG_INHERIT) != 0;
}

}  // namespace

TEST(XfileHandles, HandlesAreInheritableAndShareEverything) {
    const TempFolder folder;
    for (const XfileMode mode : kModes) {
        Xfile file;
        ASSERT_EQ(xfileOpen(file, folder / "f", mode), 0);
        EXPECT_TRUE(isInheritable(file));
        const HANDLE other =
            ::CreateFileW(wideForTests(folder / "f").c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                          OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(other, INVALID_HANDLE_VALUE);
        ::CloseHandle(other);
    }
}

TEST(XfileHandles, PrivateHandlesAreNotInheritable) {
    const TempFolder folder;
    for (const XfileMode mode : kModes) {
        Xfile file;
        ASSERT_EQ(xfileOpen(file, folder / "f", mode, XfileSharing::Private), 0);
        EXPECT_FALSE(isInheritable(file));
    }
}

TEST(XfileHandles, PathsThatAreNotUtf8AreRefusedByEveryFunction) {
    constexpr XErr kNoUnicode = 101113;
    const TempFolder folder;
    const std::string bad = folder / "\xFF";
    const std::string good = folder.write("good", "content");
    Xfile file;
    std::int64_t size = 0;
    const std::vector<XErr> errors{xfileOpen(file, bad, XfileMode::WriteNew),
                                   xfileExists(bad),
                                   xfileSizeOfPath(bad, size),
                                   xfileDelete(bad),
                                   xfileRemoveFolder(bad),
                                   xfileCreateFolder(bad),
                                   xfileMakeFolders(bad),
                                   xfileFlush(bad),
                                   xfileMove(bad, good),
                                   xfileMove(good, bad),
                                   xfileMoveWithRetry(good, bad)};
    EXPECT_EQ(errors, std::vector<XErr>(errors.size(), kNoUnicode));
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(folder.list(), std::vector<std::string>{"good"});
    EXPECT_EQ(folder.read("good"), "content");
}

TEST(XfileHandles, AMissingPathCannotBeMade) { EXPECT_NE(xfileMakeFolders("?:\\a"), 0); }
