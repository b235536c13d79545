#include "PlainHost.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/WindowsForTests.h"

namespace {

class InitTest : public PlainHostTest {
 protected:
    // Expects the initialisation to be refused with this result. It prints its only log line,
    // because there is no log yet.
    void expectRefusal(const std::string& client, const std::string& result,
                       const std::string& line) const {
        SCOPED_TRACE(client);
        const Lines lines = output({"init", client});
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[0].substr(lines[0].find(" E: ") + 4), logged::messageOf(line));
        EXPECT_EQ(lines[1], "init " + result);
    }

    // A folder of more than 300 characters that does not exist yet.
    std::string longFolder() const {
        std::string path = data.path();
        while (path.size() < 300) path += "\\a folder with a long name";
        return path;
    }

    // The form of a path that may have any length.
    static std::string anyLength(const std::string& path) { return "\\\\?\\" + path; }
};

}  // namespace

TEST_F(InitTest, LoadsTheConfigurationAndLogsIntoTheProductsLog) {
    writeConf("vtr.locale=\"fr-FR\"\n");
    EXPECT_EQ(output("init Helper getstr vtr.locale fini"),
              (Lines{"init 0", "getstr fr-FR", "fini 0"}));
    EXPECT_EQ(log(), (Lines{logged::byHelper(logged::initialising("Helper")),
                            logged::byHelper(logged::confLoading()),
                            logged::byHelper(logged::confLoaded())}));
}

TEST_F(InitTest, EveryClientButTheLauncherStartsWhateverIsInstalled) {
    writeConf("");
    version = "1.0";
    for (const char* client : {"Installer", "LogCollector", "Helper", "Uninstaller"}) {
        EXPECT_EQ(output({"init", client}), Lines{"init 0"}) << client;
    }
    EXPECT_EQ(log()[0], logged::by("Installer_bridge", logged::initialising("Installer")));
}

TEST_F(InitTest, UnknownClientsAreRefused) {
    for (const std::string client : {"launcher", "Launcher ", " Launcher", "", "Other", "(null)"}) {
        expectRefusal(client, "22", logged::clientInvalid(client));
    }
    EXPECT_FALSE(data.has("Logs\\Player.log")) << "nothing else has been done";
}

TEST_F(InitTest, TheLauncherNeedsTheProductsExactVersion) {
    writeConf("");
    EXPECT_EQ(output("init Launcher"), Lines{"init 0"});
    const std::string own = kProductVersion;
    const std::string shorter = own.substr(0, own.size() - 1);
    for (const std::string& other : {own + "0", shorter, std::string(), shorter + "x"}) {
        version = other;
        expectRefusal("Launcher", "-1", logged::versionMismatched(version));
    }
}

TEST_F(InitTest, AMissingVersionMismatchesToo) {
    const Lines lines = output("sandbox init Launcher");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].find(logged::messageOf(logged::versionMismatched(""))), std::string::npos);
    EXPECT_EQ(lines[1], "init -1");
}

TEST_F(InitTest, WithoutAConfFileTheDefaultsAreThere) {
    writeConf("vtr.locale=\"fr-FR\"\n");
    EXPECT_EQ(output("initex Helper 1 (null) getstr vtr.locale getstr vtr.log_levels"),
              (Lines{"initex 0", "getstr ", "getstr *:I"}));
}

TEST_F(InitTest, AGivenLogFileReplacesTheProducts) {
    writeConf("");
    EXPECT_EQ(output({"initex", "Helper", "0", data / "own.log"}), Lines{"initex 0"});
    EXPECT_EQ(logMessages(data.read("own.log")).size(), 3u);
    EXPECT_FALSE(data.has("Logs\\Player.log"));
}

TEST_F(InitTest, ALogInALongFolderIsWrittenAndItsFolderMade) {
    writeConf("");
    const std::string path = longFolder() + "\\own.log";
    EXPECT_EQ(output({"initex", "Helper", "0", path}), Lines{"initex 0"});
    EXPECT_EQ(logMessages(readBytes(anyLength(path))).size(), 3u);
}

TEST_F(InitTest, TheDataFolderMayBeLong) {
    const std::string cache = longFolder() + "\\Engine\\A\\AppCache";
    for (const std::string& made : {longFolder() + "\\Logs", cache}) {
        std::filesystem::create_directories(longSystemPath(made));
    }
    writeBytes(anyLength(longFolder() + "\\vantrel.conf"), "vtr.locale=\"fr-FR\"\n");
    writeBytes(anyLength(cache + "\\AppCache.json"),
               R"([{"package":"com.a","activity":"m","appLabel":"l","versionCode":1,)"
               R"("versionName":"v"}])");
    const Lines lines =
        output({"registry", "UserDefinedDir", longFolder(), "init", "Helper", "getstr",
                "vtr.locale", "setstr", "vtr.guid", "new", "commit", "apps", "A"});
    ASSERT_EQ(lines.size(), 15u);
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + 4),
              (Lines{"init 0", "getstr fr-FR", "setstr 0", "commit 0"}));
    EXPECT_EQ(lines[9], R"(        "package": "com.a",)");
    const std::string text = readBytes(anyLength(longFolder() + "\\vantrel.conf"));
    EXPECT_NE(text.find("vtr.guid=\"new\"\n"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(longSystemPath(longFolder() + "\\vantrel.conf-temp")));
    EXPECT_EQ(logMessages(readBytes(anyLength(longFolder() + "\\Logs\\Player.log"))).size(), 4u);
}

TEST_F(InitTest, TheProductsLogIsLookedUpAlthoughAnotherIsGiven) {
    const TempFolder later;
    EXPECT_EQ(output({"initex", "Helper", "1", data / "own.log", "registry", "UserDefinedDir",
                      later.path(), "initex", "Helper", "1", "(null)"}),
              (Lines{"initex 0", "initex 0"}))
        << "a Logs folder that is missing would be fatal";
    EXPECT_EQ(log().size(), 3u) << "in the folder that the registry named first";
    EXPECT_EQ(later.list(), Lines{});
}

TEST_F(InitTest, AMissingConfFileIsAFailureThatLeavesTheDefaults) {
    EXPECT_EQ(output("init Helper getstr vtr.log_levels"), (Lines{"init -1", "getstr *:I"}));
    EXPECT_EQ(log(), (Lines{logged::byHelper(logged::initialising("Helper")),
                            logged::byHelper(logged::confLoading()),
                            logged::byHelper(logged::confNotOpened(confPath())),
                            logged::byHelper(logged::confNotLoaded())}));
}

TEST_F(InitTest, ABrokenLineIsAFailureThatLeavesWhatWasRead) {
    writeConf("vtr.locale=\"fr-FR\"\nbroken\n");
    EXPECT_EQ(output("init Helper getstr vtr.locale"), (Lines{"init -1", "getstr fr-FR"}));
    EXPECT_EQ(log()[2], logged::byHelper(logged::confMalformed("broken")));
    EXPECT_EQ(log()[3], logged::byHelper(logged::confNotLoaded()));
}

TEST_F(InitTest, ALineThatEndsAtItsSignStopsAtTheFence) {
    writeConf("vtr.locale=\"fr-FR\"\nvtr.guid=\n");
    EXPECT_EQ(output("init Helper getstr vtr.locale setstr vtr.guid x commit getstr vtr.guid"),
              (Lines{"init -1", "getstr fr-FR", "setstr 0", "commit -1", "getstr x"}));
    const Lines lines = log();
    ASSERT_EQ(lines.size(), 6u);
    const auto exceptionIn = [](const std::string& function) {
        return logged::byHelper(logged::exceptionCaught("BRIDGE", function));
    };
    EXPECT_EQ(lines[2].rfind(exceptionIn("bridgeApiInitEx"), 0), 0u);
    EXPECT_EQ(lines[3], logged::byHelper(logged::confNotLoaded()));
    EXPECT_EQ(lines[5].rfind(exceptionIn("bridgeConfCommit"), 0), 0u);
    EXPECT_EQ(data.list(), (Lines{"Logs", "vantrel.conf"})) << "no temporary file is left";
    EXPECT_EQ(data.read("vantrel.conf"), "vtr.locale=\"fr-FR\"\nvtr.guid=\n");
}

TEST_F(InitTest, AMissingLogsFolderIsFatalAndSilent) {
    writeConf("");
    ASSERT_TRUE(::RemoveDirectoryW(wideForTests(data / "Logs").c_str()));
    const ChildResult result = play(script("init Helper"));
    EXPECT_EQ(result.status, kFatalStatus);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(data.list(), Lines{"vantrel.conf"});
}

TEST_F(InitTest, ASecondInitialisationRunsEveryStepAgain) {
    writeConf("vtr.locale=\"a\"\n");
    EXPECT_EQ(output({"init", "Helper", "setstr", "vtr.guid", "staged", "initex", "Installer", "0",
                      data / "own.log", "getstr", "vtr.locale", "getstr", "vtr.guid", "fini"}),
              (Lines{"init 0", "setstr 0", "initex 0", "getstr a", "getstr staged", "fini 0"}));
    EXPECT_EQ(log().size(), 3u);
    EXPECT_EQ(logMessages(data.read("own.log"))[0],
              logged::by("Installer_bridge", logged::initialising("Installer")));
}

TEST_F(InitTest, FinishingCommitsNothing) {
    writeConf("vtr.locale=\"a\"\n");
    EXPECT_EQ(asHelper("setstr vtr.locale b fini"), (Lines{"setstr 0", "fini 0"}));
    EXPECT_EQ(data.read("vantrel.conf"), "vtr.locale=\"a\"\n");
}

TEST_F(InitTest, FinishingWithoutAnInitialisationReturnsZero) {
    EXPECT_EQ(output("fini"), Lines{"fini 0"});
}
