// The C# binding in .NET for Windows, step by step: what it looks at before the library is asked,
// and how work and streams end.
#include <string>

#include "DotnetHosts.h"

TEST_F(DotnetTest, PreflightFindsNothing) {
    EXPECT_EQ(preflight(), Lines{"fine"});
    EXPECT_FALSE(data.has("Logs\\Player.log"));
    EXPECT_EQ(playedSteps({"init\tUninstaller", "preflight"}), (Lines{"started", "fine"}));
}

TEST_F(DotnetTest, PreflightFindsAMissingRegistryValue) {
    ChildProcess host = startSteps({"preflight", "init\tUninstaller"}, "");
    EXPECT_EQ(linesUpToTheEnd(host),
              (Lines{"problem the registry value HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo "
                     "\"UserDefinedDir\" is missing",
                     "preflight 1"}));
}

TEST_F(DotnetTest, PreflightFindsAMissingDataFolder) {
    ChildProcess host = startSteps({"preflight", "init\tUninstaller"}, data / "none");
    EXPECT_EQ(
        linesUpToTheEnd(host),
        (Lines{"problem the data folder " + data / "none" + " does not exist", "preflight 1"}));
    EXPECT_FALSE(data.has("none"));
}

TEST_F(DotnetTest, PreflightFindsAMissingLogFolderAndConfiguration) {
    const TempFolder empty;
    ChildProcess host = startSteps({"preflight", "init\tUninstaller"}, empty.path());
    EXPECT_EQ(linesUpToTheEnd(host),
              (Lines{"problem the folder " + empty / "Logs" + " does not exist",
                     "problem the configuration file " + empty / "vantrel.conf" + " does not exist",
                     "preflight 2"}));
}

TEST_F(DotnetTest, PreflightFindsALogThatCannotBeOpened) {
    data.makeFolder("Logs\\Player.log");
    EXPECT_EQ(playedSteps({"preflight", "init\tUninstaller"}),
              (Lines{"problem the log " + data / "Logs\\Player.log" +
                         " cannot be opened (Windows error 5)",
                     "preflight 1"}));
}

TEST_F(DotnetTest, PreflightFindsAByteOrderMark) {
    writeConf("\xEF\xBB\xBF" + std::string(kConf));
    EXPECT_EQ(
        playedSteps({"preflight", "init\tUninstaller"}),
        (Lines{"problem the configuration file " + confPath() + " begins with a byte order mark",
               "preflight 1"}));
}

TEST_F(DotnetTest, PreflightFindsAnotherVersionOfALaunchersProduct) {
    EXPECT_EQ(playedSteps({"preflight\tLauncher", "init\tLauncher"}),
              (Lines{"problem the product's version is \"\", and the library's is \"" +
                         std::string(kProductVersion) + "\"",
                     "preflight 1"}));
}

TEST_F(DotnetTest, TypedKeysAndInstances) {
    EXPECT_EQ(playedSteps({"init\tUninstaller", "gettyped", "set\tvtr.enable_adb_access\ttrue",
                           "set\tvtr.instance.Nougat64.dpi\t320", "gettyped", "instances"}),
              (Lines{"started", "typed false 240", "set", "set", "typed true 320",
                     "instance Nougat64 Größe 日本 Nougat64 4096 4"}));
}

TEST_F(DotnetTest, AMistypedInstanceIsNotWritten) {
    const std::string wrong =
        "key error there is no instance \"nougat64\"; did you mean \"Nougat64\"?";
    EXPECT_EQ(playedSteps({"init\tUninstaller", "set\tvtr.instance.nougat64.dpi\t320",
                           "get\tvtr.instance.nougat64.dpi", "commit"}),
              (Lines{"started", wrong, wrong, "committed"}));
    EXPECT_EQ(data.read("vantrel.conf"), kConf);
}

TEST_F(DotnetTest, AnAddedInstanceIsReadAfterItWasSet) {
    EXPECT_EQ(
        playedSteps({"init\tUninstaller", "addinstance\tPie64", "addinstance\tNougat32_1",
                     "get\tvtr.instance.Nougat32_1.enable_vsync",
                     "set\tvtr.instance.Nougat32_1.dpi\t320",
                     "get\tvtr.instance.Nougat32_1.enable_vsync", "commit"}),
        (Lines{"started", "key error \"Pie64\" is not an image; there are Nougat32, Nougat64",
               "added",
               "key error instance \"Nougat32_1\" is not loaded yet: it is after a commit, or "
               "after instanceListUpdated",
               "set", "bool false", "committed"}));
    EXPECT_NE(data.read("vantrel.conf").find("vtr.instance.Nougat32_1.dpi=\"320\"\n"),
              std::string::npos);
}

TEST_F(DotnetTest, AnInstanceOfAnotherProgramIsReadAfterACommit) {
    const std::string key = "vtr.instance.Nougat32_1.enable_vsync";
    ChildProcess host = startSteps({"init\tUninstaller", "listen", "events\t1", "get\t" + key,
                                    "set\tvtr.locale\tde", "commit", "get\t" + key},
                                   data.path());
    EXPECT_EQ(host.readLine(), "started");
    writeConf(std::string(kConf) + key + "=\"1\"\n");
    const ChildProcess player = startPlayer(host, "event app-displayed N p\n");
    EXPECT_EQ(
        linesUpToTheEnd(host),
        (Lines{"event appDisplayed N|p",
               "key error instance \"Nougat32_1\" is not loaded yet: it is after a commit, or "
               "after instanceListUpdated",
               "set", "committed", "bool true"}));
}

TEST_F(DotnetTest, ABoolWithoutAValueIsRefusedUntilItIsSet) {
    EXPECT_EQ(playedSteps({"init\tUninstaller", "get\tvtr.status.raw_mode",
                           "set\tvtr.status.raw_mode\ttrue", "get\tvtr.status.raw_mode"}),
              (Lines{"started", "key error \"vtr.status.raw_mode\" has no value and no default",
                     "set", "bool true"}));
}

TEST_F(DotnetTest, StoredValuesThatCannotBeReadAreRefused) {
    writeConf("vtr.instance.Nougat64.dpi=\"abc\"\nvtr.enable_adb_access=\"yes\"\n");
    EXPECT_EQ(
        playedSteps({"init\tUninstaller", "get\tvtr.instance.Nougat64.dpi",
                     "get\tvtr.enable_adb_access", "get\tvtr.instance.Nougat64.max_fps"}),
        (Lines{"started",
               "key error \"vtr.instance.Nougat64.dpi\" has a value that cannot be read: \"abc\"",
               "key error \"vtr.enable_adb_access\" has a value that cannot be read: \"yes\"",
               "i32 60"}));
}

TEST_F(DotnetTest, AListingWithAnUnknownImageIsRefused) {
    writeConf("vtr.instance.Pie64.dpi=\"240\"\n");
    EXPECT_EQ(playedSteps({"init\tUninstaller", "instances", "get\tvtr.locale"}),
              (Lines{"started", "key error \"Pie64\" is not an image; there are Nougat32, Nougat64",
                     "string "}));
}

TEST_F(DotnetTest, AListenerThatIsNotTheFirstIsRefused) {
    ChildProcess first = startHost({"stuck handler"});
    EXPECT_EQ(first.readLine(), "listening");
    EXPECT_EQ(playedSteps({"init\tUninstaller", "listen", "launch\tN\tp"}),
              (Lines{"started", "listen error", "error 2 XERR_NOENT"}));
}

TEST_F(DotnetTest, ListeningLeavesNoErrorInTheLog) {
    EXPECT_EQ(playedSteps({"init\tUninstaller", "listen", "fini"}),
              (Lines{"started", "listening", "ended"}));
    EXPECT_GT(log().size(), 3u);
    for (const std::string& line : log()) EXPECT_EQ(line.substr(0, 2), "I ") << line;
}

TEST_F(DotnetTest, AppsAreLaunchedInstalledAndUninstalled) {
    EXPECT_EQ(playedWithStandins({"init\tUninstaller", "listen", "launch\tDotnetTest\tcom.größe",
                                  "installapk\tDotnetTest\tC:\\П.apk",
                                  "uninstall\tDotnetTest\tcom.größe"}),
              (Lines{"started", "listening", "displayed DotnetTest com.größe", "installed 0",
                     "uninstalled"}));
}

TEST_F(DotnetTest, ImagesAreInstalledAndInstancesCreated) {
    EXPECT_EQ(playedWithStandins(
                  {"init\tUninstaller", "listen", "installimage\tNougat32", "create\tNougat64"}),
              (Lines{"started", "listening", "image 2", "created 0 Nougat64_1"}));
}

TEST_F(DotnetTest, WorkWhoseEventDoesNotComeTimesOut) {
    installFolder = standinProgram("");
    data.write("standin.script", "on installApk event apk-install-completed DotnetTest 0 other\n");
    EXPECT_EQ(playedSteps({"init\tUninstaller", "listen",
                           "installapk\tDotnetTest\tC:\\a.apk\tshort", "events\t1"}),
              (Lines{"started", "listening", "time-out",
                     "event apkInstallCompleted DotnetTest|0|other"}));
}

TEST_F(DotnetTest, AStreamHasAllNineEvents) {
    ChildProcess host =
        startSteps({"init\tUninstaller", "listen", "events\t9", "fini"}, data.path());
    EXPECT_EQ(host.readLine(), "started");
    const ChildProcess player = startPlayer(host, everyEventScript());
    Lines expected;
    for (const std::string& line : everyLine()) expected.push_back("event " + line);
    EXPECT_EQ(linesUpToTheEnd(host), with(expected, {"ended"}));
}

TEST_F(DotnetTest, AStreamThatIsFullEndsAfterWhatItHolds) {
    ChildProcess host = startSteps({"init\tUninstaller", "listen", "overflow"}, data.path());
    EXPECT_EQ(host.readLine(), "started");
    const ChildProcess player = startPlayer(host, "event-flood 5 app-displayed N p{n}\n");
    EXPECT_EQ(linesUpToTheEnd(host),
              (Lines{"event appDisplayed N|p1", "event appDisplayed N|p2", "overflow"}));
}
