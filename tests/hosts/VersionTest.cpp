#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/WindowsForTests.h"

TEST(Version, TheLibraryCarriesItsVersionResource) {
    const std::wstring path = wideForTests(builtProgram("QX-Bridge.dll"));
    std::vector<char> data(::GetFileVersionInfoSizeW(path.c_str(), nullptr));
    ASSERT_FALSE(data.empty());
    ASSERT_TRUE(
        ::GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(data.size()), data.data()));
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    ASSERT_TRUE(::VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length));
    EXPECT_EQ(info->dwFileVersionMS, (5u << 16) | 2u);
    EXPECT_EQ(info->dwFileVersionLS, 1052u);
    EXPECT_EQ(info->dwFileType, static_cast<DWORD>(VFT_DLL));
    wchar_t* text = nullptr;
    ASSERT_TRUE(::VerQueryValueW(data.data(), L"\\StringFileInfo\\040904b0\\FileVersion",
                                 reinterpret_cast<void**>(&text), &length));
    EXPECT_STREQ(text, L"5.2.0.1052");
}
