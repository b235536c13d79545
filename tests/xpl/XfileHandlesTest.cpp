// What Windows says of the handles.
#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "support/WindowsForTests.h"
#include "xpl/Xfile.h"

TEST(XfileHandles, HandlesAreInheritableAndShareEverything) {
    const TempFolder folder;
    for (const XfileMode mode : {XfileMode::ReadWrite, XfileMode::Append, XfileMode::WriteNew,
                                 XfileMode::Update, XfileMode::Read}) {
        Xfile file;
        ASSERT_EQ(xfileOpen(file, folder / "f", mode), 0);
        DWORD flags = 0;
        ASSERT_TRUE(::GetHandleInformation(file.handle(), &flags));
        EXPECT_TRUE(flags & HANDLE_FLAG_INHERIT);
        const HANDLE other =
            ::CreateFileW(wideForTests(folder / "f").c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                          OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(other, INVALID_HANDLE_VALUE);
        ::CloseHandle(other);
    }
}
