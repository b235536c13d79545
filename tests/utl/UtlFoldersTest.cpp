#include "support/FatalBreak.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/TestHeaders.h"
#include "utl/UtlFolders.h"

namespace {

const std::string kNotAbsolute =
    "E   utlInstallDir: Failed to initialize installDir properly: Got ";
const std::string kBreak = logged::fatalBreak("", "Source/utl/Utl");

// The functions, by the names that the tests pass to the subprocess.
const std::map<std::string, std::function<std::string()>> kFolders{
    {"data", utlGetDataDir},
    {"logs", utlLogsDir},
    {"log", utlPlayerLogPath},
    {"assets", utlAssetsDir},
    {"shared", utlSharedDir},
    {"install", utlGetInstallDir},
    {"wide data", [] { return utlDataDir().u8string(); }},
    {"wide install", [] { return utlInstallDir().u8string(); }},
};

}  // namespace

// Prints folders by their names. "Name=Value" sets a value of the registry, and "silent" switches
// the log off. In its own process, since the folders are read once per process.
SUBPROCESS(printsFolders) {
    RegistrySandbox registry;
    std::optional<LogOff> off;
    for (const std::string& argument : arguments) {
        const std::size_t equals = argument.find('=');
        if (argument == "silent") {
            off.emplace();
        } else if (equals != std::string::npos) {
            registry.set(argument.substr(0, equals), argument.substr(equals + 1));
        } else {
            std::printf("%s\n", kFolders.at(argument)().c_str());
        }
    }
    return 0;
}

TEST(UtlFolders, DerivedFoldersKeepTheirMixedSeparators) {
    EXPECT_EQ(subprocessOutput("printsFolders", {"UserDefinedDir=D:\\Data", "data", "logs", "log",
                                                 "assets", "shared"}),
              "D:\\Data\\\nD:\\Data\\Logs/\nD:\\Data\\Logs/Player.log\nD:\\Data\\Client/Assets/\n"
              "D:\\Data\\/Engine/UserData/SharedFolder/\n");
}

TEST(UtlFolders, AMissingDataFolderIsOneSeparator) {
    EXPECT_EQ(
        subprocessOutput("printsFolders", {"data", "logs", "log", "assets", "shared"}),
        "\\\n\\Logs/\n\\Logs/Player.log\n\\Client/Assets/\n\\/Engine/UserData/SharedFolder/\n");
}

TEST(UtlFolders, TheInstallFolderGetsNoSeparator) {
    EXPECT_EQ(subprocessOutput("printsFolders", {"InstallDir=C:\\Apps\\Player", "install"}),
              "C:\\Apps\\Player\n");
}

TEST(UtlFolders, AMissingInstallFolderIsFatal) {
    EXPECT_EQ(linesUntilBreak("printsFolders", {"install"}),
              (Lines{logged::untagged(logged::installFolderUnknown()), kBreak}));
}

TEST(UtlFolders, AChangeOfTheRegistryIsNeverSeen) {
    EXPECT_EQ(subprocessOutput("printsFolders", {"InstallDir=C:\\First\\", "install",
                                                 "InstallDir=C:\\Second\\", "install"}),
              "C:\\First\\\nC:\\First\\\n");
}

TEST(UtlFolders, WideFoldersAreTheRegistrysOwn) {
    EXPECT_EQ(subprocessOutput("printsFolders", {"InstallDir=C:\\Apps\\Player",
                                                 "UserDefinedDir=\\\\server\\share\\Data",
                                                 "wide install", "wide data"}),
              "C:\\Apps\\Player\n\\\\server\\share\\Data\n");
}

TEST(UtlFolders, ARelativeInstallFolderIsFatalForTheWideForm) {
    EXPECT_EQ(linesUntilBreak("printsFolders", {"InstallDir=Apps", "wide install"}),
              (Lines{kNotAbsolute + "Apps", kBreak}));
}

TEST(UtlFolders, ARelativeDataFolderIsFatalForTheWideForm) {
    EXPECT_EQ(linesUntilBreak("printsFolders", {"UserDefinedDir=Data", "wide data"}),
              Lines{kBreak});
}

TEST(UtlFolders, AMissingInstallFolderIsFatalForTheWideForm) {
    EXPECT_EQ(linesUntilBreak("printsFolders", {"wide install"}), (Lines{kNotAbsolute, kBreak}));
}

TEST(UtlFolders, AMissingDataFolderIsFatalForTheWideForm) {
    EXPECT_EQ(linesUntilBreak("printsFolders", {"wide data"}), Lines{kBreak});
}

TEST(UtlFolders, AbsoluteMeansARootAndASeparator) {
    for (const wchar_t* path : {L"C:\\", L"C:/Data", L"z:/Data", L"\\\\server\\share\\x"}) {
        EXPECT_TRUE(utlIsAbsolute(path)) << path;
    }
    for (const wchar_t* path : {L"", L"C:", L"C:Data", L"\\Data", L"\\\\server\\share"}) {
        EXPECT_FALSE(utlIsAbsolute(path)) << path;
    }
    for (const wchar_t* path : {L"\\:\\Data", L"1:\\Data", L"::\\Data"}) {
        EXPECT_FALSE(utlIsAbsolute(path)) << path << ": a drive is a letter";
    }
    for (const wchar_t* path : {L"\\\\\\\\", L"\\\\\\share\\x"}) {
        EXPECT_FALSE(utlIsAbsolute(path)) << path << ": a server has a name";
    }
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
