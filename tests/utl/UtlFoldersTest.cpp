#include "support/FatalBreak.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/TestHeaders.h"
#include "utl/UtlFolders.h"

namespace {

// The folders are read once per process, so each case has a process of its own, which prints what
// it got. The last line of a fatal case is the log's.
std::string output(const std::string& subprocess, const SubprocessArguments& arguments) {
    const ChildResult result = runSubprocess(subprocess, arguments);
    EXPECT_EQ(result.status, 0u) << result.out << result.err;
    return result.out;
}

const std::string kNotAbsolute =
    "E   utlInstallDir: Failed to initialize installDir properly: Got ";
const std::string kBreak = logged::fatalBreak("", "Source/utl/Utl");

}  // namespace

SUBPROCESS(printFolders) {
    RegistrySandbox registry;
    if (!arguments.empty()) registry.set("UserDefinedDir", arguments[0]);
    std::printf("%s|%s|%s|%s|%s", utlGetDataDir().c_str(), utlLogsDir().c_str(),
                utlPlayerLogPath().c_str(), utlAssetsDir().c_str(), utlSharedDir().c_str());
    return 0;
}

SUBPROCESS(printInstallDir) {
    RegistrySandbox registry;
    if (!arguments.empty()) registry.set("InstallDir", arguments[0]);
    std::printf("%s", utlGetInstallDir().c_str());
    return 0;
}

SUBPROCESS(printWideDirs) {
    RegistrySandbox registry;
    registry.set("InstallDir", arguments[0]);
    registry.set("UserDefinedDir", arguments[1]);
    std::printf("%s|%s", utlInstallDir().u8string().c_str(), utlDataDir().u8string().c_str());
    return 0;
}

SUBPROCESS(printMissingWideDir) {
    RegistrySandbox registry;
    std::printf("%s",
                (arguments[0] == "install" ? utlInstallDir() : utlDataDir()).u8string().c_str());
    return 0;
}

SUBPROCESS(changesTheRegistryBetween) {
    RegistrySandbox registry;
    registry.set("InstallDir", "C:\\First\\");
    const std::string first = utlGetInstallDir();
    registry.set("InstallDir", "C:\\Second\\");
    std::printf("%s|%s", first.c_str(), utlGetInstallDir().c_str());
    return 0;
}

TEST(UtlFolders, DerivedFoldersKeepTheirMixedSeparators) {
    EXPECT_EQ(output("printFolders", {"D:\\Data"}),
              "D:\\Data\\|D:\\Data\\Logs/|D:\\Data\\Logs/Player.log|D:\\Data\\Client/Assets/|"
              "D:\\Data\\/Engine/UserData/SharedFolder/");
}

TEST(UtlFolders, AMissingDataFolderIsOneSeparator) {
    EXPECT_EQ(output("printFolders", {}),
              "\\|\\Logs/|\\Logs/Player.log|\\Client/Assets/|\\/Engine/UserData/SharedFolder/");
}

TEST(UtlFolders, TheInstallFolderGetsNoSeparator) {
    EXPECT_EQ(output("printInstallDir", {"C:\\Apps\\Player"}), "C:\\Apps\\Player");
}

TEST(UtlFolders, AMissingInstallFolderIsFatal) {
    EXPECT_EQ(linesUntilBreak("printInstallDir"),
              (Lines{logged::untagged(logged::installFolderUnknown()), kBreak}));
}

TEST(UtlFolders, AChangeOfTheRegistryIsNeverSeen) {
    EXPECT_EQ(output("changesTheRegistryBetween", {}), "C:\\First\\|C:\\First\\");
}

TEST(UtlFolders, WideFoldersAreTheRegistrysOwn) {
    EXPECT_EQ(output("printWideDirs", {"C:\\Apps\\Player", "\\\\server\\share\\Data"}),
              "C:\\Apps\\Player|\\\\server\\share\\Data");
}

TEST(UtlFolders, ARelativeInstallFolderIsFatalForTheWideForm) {
    EXPECT_EQ(linesUntilBreak("printWideDirs", {"Apps", "C:\\Data"}),
              (Lines{kNotAbsolute + "Apps", kBreak}));
}

TEST(UtlFolders, ARelativeDataFolderIsFatalForTheWideForm) {
    EXPECT_EQ(linesUntilBreak("printWideDirs", {"C:\\Apps", "Data"}), Lines{kBreak});
}

TEST(UtlFolders, AMissingInstallFolderIsFatalForTheWideFormWhichGotNothing) {
    EXPECT_EQ(linesUntilBreak("printMissingWideDir", {"install"}), (Lines{kNotAbsolute, kBreak}));
}

TEST(UtlFolders, AMissingDataFolderIsFatalForTheWideForm) {
    EXPECT_EQ(linesUntilBreak("printMissingWideDir", {"data"}), Lines{kBreak});
}

TEST(UtlFolders, AbsoluteMeansARootAndASeparator) {
    EXPECT_TRUE(utlIsAbsolute(L"C:\\"));
    EXPECT_TRUE(utlIsAbsolute(L"C:/Data"));
    EXPECT_TRUE(utlIsAbsolute(L"\\\\server\\share\\x"));
    EXPECT_FALSE(utlIsAbsolute(L""));
    EXPECT_FALSE(utlIsAbsolute(L"C:"));
    EXPECT_FALSE(utlIsAbsolute(L"C:Data"));
    EXPECT_FALSE(utlIsAbsolute(L"\\Data"));
    EXPECT_FALSE(utlIsAbsolute(L"\\\\server\\share"));
    EXPECT_FALSE(utlIsAbsolute(L"\\:\\Data")) << "a drive is a letter";
    EXPECT_FALSE(utlIsAbsolute(L"1:\\Data"));
    EXPECT_FALSE(utlIsAbsolute(L"::\\Data"));
    EXPECT_FALSE(utlIsAbsolute(L"\\\\\\\\")) << "a server has a name";
    EXPECT_FALSE(utlIsAbsolute(L"\\\\\\share\\x"));
    EXPECT_TRUE(utlIsAbsolute(L"z:/Data"));
}

TEST(UtlFolders, ADriveOrTwoLeadingSeparatorsMakeARoot) {
    EXPECT_FALSE(utlIsAbsolute(L"\\a\\b\\c"));
    EXPECT_FALSE(utlIsAbsolute(L"a\\b\\c\\d"));
    EXPECT_FALSE(utlIsAbsolute(L"a\\\\b\\c\\d"));
    EXPECT_TRUE(utlIsAbsolute(L"\\\\server\\\\x")) << "a share without a name";
}

TEST(UtlFolders, ObjectNamesFollowTheProductsRule) {
    EXPECT_EQ(utlGlobalObjectName("conf"), "Global\\vtr_conf_nvo");
    EXPECT_EQ(utlGlobalObjectName("appc_Nougat64"), "Global\\vtr_appc_Nougat64_nvo");
    EXPECT_EQ(utlLocalObjectName("Launcher_bridge"), "vtr_Launcher_bridge_nvo");
}

TEST(UtlFolders, AServerWithoutAShareIsNotAbsolute) { EXPECT_FALSE(utlIsAbsolute(L"\\\\server")); }

TEST(UtlFolders, ASeparatorAfterTheEndOfThePathDoesNotCount) {
    EXPECT_FALSE(utlIsAbsolute(std::wstring_view(L"C:\\Data", 2)));
    EXPECT_FALSE(utlIsAbsolute(std::wstring_view(L"\\\\server\\share\\x", 14)));
    EXPECT_FALSE(utlIsAbsolute(std::wstring_view(L"\\\\server\\share", 8)));
}
