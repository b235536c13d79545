// The folders that a host of the C# binding sets for development.
#include <string>

#include "BindingHosts.h"
#include "DotnetHosts.h"

namespace {

class DotnetFoldersTest : public DotnetTest {
 protected:
    Lines valuesWith(const std::string& install) const {
        return {"below HKEY_LOCAL_MACHINE: SOFTWARE", "InstallDir String|" + install,
                "UserDefinedDir String|" + data.path(),
                "Version String|" + std::string(kProductVersion)};
    }
    Lines valuesWithoutInstall() const {
        Lines values = valuesWith("");
        values.erase(values.begin() + 1);
        return values;
    }
};

}  // namespace

TEST_F(DotnetFoldersTest, TheFoldersAndTheVersionAreAllThatTheProcessSees) {
    EXPECT_EQ(played({"Folders"}), valuesWith("C:\\None\\"));
}

TEST_F(DotnetFoldersTest, AnInstallFolderGetsItsBackslash) {
    installFolder = "C:\\Größe";
    EXPECT_EQ(played({"Folders"}), valuesWith("C:\\Größe\\"));
}

TEST_F(DotnetFoldersTest, AnEmptyFolderIsLeftOut) {
    installFolder = "";
    EXPECT_EQ(played({"Folders"}), valuesWithoutInstall());
}

TEST_F(DotnetFoldersTest, ASessionUsesThem) {
    EXPECT_EQ(played({"FoldersOfASession"}), Lines{"instance Nougat64 Größe 日本"});
}

TEST_F(DotnetFoldersTest, ALaterCallReplacesThem) {
    EXPECT_EQ(played({"FoldersTwice"}), valuesWith("C:\\None\\"));
}

TEST_F(DotnetFoldersTest, ALaterCallLeavesNothingOfTheFirst) {
    installFolder = "";
    EXPECT_EQ(played({"FoldersTwice"}), valuesWithoutInstall());
}

TEST_F(DotnetFoldersTest, TheirKeyGoesAtTheEndOfTheProcess) {
    ChildProcess host = startHost({"KeyOfTheFolders"});
    const DWORD process = ::GetProcessId(host.handle());
    EXPECT_EQ(linesUpToTheEnd(host), Lines{"key with SOFTWARE"});
    EXPECT_FALSE(hasDevelopmentKey(process));
}

TEST_F(DotnetFoldersTest, TheyAreRefusedAfterTheStart) {
    const std::string refusal =
        "InvalidOperationException: UseFolders() must be called before the start";
    EXPECT_EQ(played({"FoldersAfterTheStart"}), (Lines{refusal, refusal}));
}

TEST_F(DotnetFoldersTest, NullIsRefused) {
    EXPECT_EQ(played({"NullFolders"}),
              (Lines{"ArgumentNullException: dataFolder", "ArgumentNullException: installFolder"}));
}

TEST_F(DotnetFoldersTest, AnErrorOfWindowsIsThrownAndHidesNothing) {
    EXPECT_EQ(played({"FoldersWithoutAUser"}),
              (Lines{"Win32Exception: 1018 RegCreateKeyExW for "
                     "HKEY_CURRENT_USER\\Software\\QX-Bridge\\Development-ID: Windows error 1018",
                     "version of Windows True"}));
}
