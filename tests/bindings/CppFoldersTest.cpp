// The folders that a host of the C++ interface sets for development.
#include <string>

#include "BindingHosts.h"
#include "PlainHost.h"

namespace {

constexpr const char* kConf =
    "vtr.instance.Nougat64.cpus=\"4\"\n"
    "vtr.instance.Nougat64.display_name=\"Größe 日本\"\n"
    "vtr.instance.Nougat64.ram=\"4096\"\n";

class CppFoldersTest : public PlainHostTest {
 protected:
    CppFoldersTest() { writeConf(kConf); }

    ChildProcess startHost(const std::string& scenario) const {
        return {builtProgram("folders_cpp.exe"), {scenario, dataFolder, installFolder}};
    }

    Lines played(const std::string& scenario) const {
        ChildProcess host = startHost(scenario);
        return linesUpToTheEnd(host);
    }

    Lines valuesWith(const std::string& install) const {
        return {"below HKEY_LOCAL_MACHINE: SOFTWARE", install, data.path(),
                std::string(kProductVersion)};
    }

    std::string dataFolder = data.path();
    std::string installFolder = "C:\\None\\";
};

}  // namespace

TEST_F(CppFoldersTest, TheProcessSeesOnlyTheFoldersAndTheVersion) {
    EXPECT_EQ(played("values"), valuesWith("C:\\None\\"));
}

TEST_F(CppFoldersTest, AMissingBackslashIsAdded) {
    installFolder = "C:\\Größe";
    EXPECT_EQ(played("values"), valuesWith("C:\\Größe\\"));
}

TEST_F(CppFoldersTest, TheLibraryAndThePreflightCheckUseThem) {
    EXPECT_EQ(played("instances"), Lines{"instance Nougat64 Größe 日本"});
}

TEST_F(CppFoldersTest, ALaterCallReplacesThem) {
    EXPECT_EQ(played("twice"), valuesWith("C:\\None\\"));
}

TEST_F(CppFoldersTest, TheKeyIsDeletedWhenTheProcessExits) {
    ChildProcess host = startHost("own-key");
    const DWORD process = ::GetProcessId(host.handle());
    EXPECT_EQ(linesUpToTheEnd(host), Lines{"key with SOFTWARE"});
    EXPECT_FALSE(hasDevelopmentKey(process));
}

TEST_F(CppFoldersTest, ACallAfterTheStartIsRefused) {
    const std::string refusal = "useFolders() must be called before init()";
    EXPECT_EQ(played("after-the-start"), (Lines{refusal, refusal}));
}

TEST_F(CppFoldersTest, AnEmptyFolderIsRefused) {
    installFolder = "";
    EXPECT_EQ(played("refusal"), Lines{"installFolder must not be empty"});
    dataFolder = "";
    EXPECT_EQ(played("refusal"), Lines{"dataFolder must not be empty"});
}

TEST_F(CppFoldersTest, APathThatIsNotUtf8IsRefused) {
    EXPECT_EQ(played("not-utf-8"), Lines{"installFolder is not valid UTF-8"});
}

TEST_F(CppFoldersTest, APathWithANulIsRefused) {
    EXPECT_EQ(played("nul"), Lines{"dataFolder must not contain a NUL"});
}

TEST_F(CppFoldersTest, AWindowsErrorIsThrownAndLeavesLocalMachineAlone) {
    EXPECT_EQ(played("without-a-user"),
              (Lines{"1018 RegCreateKeyExW for "
                     "HKEY_CURRENT_USER\\Software\\QX-Bridge\\Development-ID: Windows error 1018",
                     "the machine's registry"}));
}
