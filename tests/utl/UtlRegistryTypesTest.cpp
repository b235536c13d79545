// Values that only the registry of Windows has.
#include "support/RegistryKey.h"
#include "support/RegistrySandbox.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "utl/UtlRegistry.h"

namespace {

class UtlRegistryTypes : public ::testing::Test {
 protected:
    static std::string read(const std::string& name) {
        return utlRegistryString(UtlRegistryRoot::LocalMachine, UTL_PRODUCT_KEY, name, "default");
    }

    RegistrySandbox registry;
};

}  // namespace

TEST_F(UtlRegistryTypes, AnExpandableTextCountsAsMissing) {
    setProductValue("Version", REG_EXPAND_SZ, L"x", 4);
    EXPECT_EQ(read("Version"), "default");
}

TEST_F(UtlRegistryTypes, ANumberCountsAsMissing) {
    const DWORD number = 5;
    setProductValue("Version", REG_DWORD, &number, sizeof number);
    EXPECT_EQ(read("Version"), "default");
}

TEST_F(UtlRegistryTypes, TheTerminatorMayBeMissingOrDoubled) {
    setProductValue("Version", REG_SZ, L"abc", 6);
    EXPECT_EQ(read("Version"), "abc");
    setProductValue("Version", REG_SZ, L"abc\0", 10);
    EXPECT_EQ(read("Version"), "abc");
}

TEST_F(UtlRegistryTypes, AnOddSizeLosesItsLastByte) {
    setProductValue("Version", REG_SZ, L"abc", 5);
    EXPECT_EQ(read("Version"), "ab");
}

TEST_F(UtlRegistryTypes, TheUsersRegistryIsSeparate) {
    constexpr const wchar_t* kKey = L"Software\\QXBridgeTests\\OfTheUser";
    const HKEY key = createRegistryKey(HKEY_CURRENT_USER, kKey);
    ::RegSetValueExW(key, L"Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"abc"), 8);
    ::RegCloseKey(key);
    const std::string path = "Software\\QXBridgeTests\\OfTheUser";
    EXPECT_EQ(utlRegistryString(UtlRegistryRoot::CurrentUser, path, "Version", "default"), "abc");
    EXPECT_EQ(utlRegistryString(UtlRegistryRoot::LocalMachine, path, "Version", "default"),
              "default");
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
}
