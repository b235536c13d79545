#include "support/ChildProcess.h"
#include "support/ProductVersion.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"

namespace {

// Two of a version's numbers, as the resource has them.
std::string twoNumbers(DWORD both) {
    return std::to_string(both >> 16) + "." + std::to_string(both & 0xFFFF);
}

}  // namespace

TEST(Version, TheLibraryCarriesItsVersionResource) {
    const std::wstring path = wideForTests(builtProgram("QX-Bridge.dll"));
    std::vector<char> data(::GetFileVersionInfoSizeW(path.c_str(), nullptr));
    ASSERT_FALSE(data.empty());
    ASSERT_TRUE(
        ::GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(data.size()), data.data()));
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    ASSERT_TRUE(::VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length));
    EXPECT_EQ(twoNumbers(info->dwFileVersionMS) + "." + twoNumbers(info->dwFileVersionLS),
              kProductVersion);
    EXPECT_EQ(info->dwFileType, static_cast<DWORD>(VFT_DLL));
    wchar_t* text = nullptr;
    ASSERT_TRUE(::VerQueryValueW(data.data(), L"\\StringFileInfo\\040904b0\\FileVersion",
                                 reinterpret_cast<void**>(&text), &length));
    EXPECT_EQ(text, wideForTests(kProductVersion));
}
