// The C# binding in .NET for Windows, with steps of scenarios and checks that scenarios lack.
#include <string>

#include "DotnetHosts.h"

TEST_F(DotnetTest, PreflightFindsNothingAndCreatesNothing) {
    EXPECT_EQ(playedSteps({"preflight"}), Lines{"fine"});
    EXPECT_FALSE(data.has("Logs\\Player.log"));
}

TEST_F(DotnetTest, PreflightFindsAMissingDataFolderAndDoesNotCreateIt) {
    ChildProcess host = startSteps({"preflight"}, data / "none");
    EXPECT_EQ(linesUpToTheEnd(host),
              Lines{"problem the data folder " + data / "none" + " does not exist"});
    EXPECT_FALSE(data.has("none"));
}

TEST_F(DotnetTest, PreflightFindsAnotherVersionOfALaunchersProduct) {
    EXPECT_EQ(playedSteps({"preflight\tLauncher", "init\tLauncher"}),
              (Lines{"problem the product's version is \"\", and the library's is \"" +
                         std::string(kProductVersion) + "\"",
                     "preflight 1"}));
}

TEST_F(DotnetTest, AMistypedInstanceIsNotWritten) {
    const std::string wrong =
        "key error there is no instance \"nougat64\"; did you mean \"Nougat64\"?";
    EXPECT_EQ(playedSteps({"init\tUninstaller", "set\tvtr.instance.nougat64.dpi\t320", "commit"}),
              (Lines{"started", wrong, "committed"}));
    EXPECT_EQ(data.read("vantrel.conf"), kConf);
}

TEST_F(DotnetTest, AnAddedInstanceIsWritten) {
    EXPECT_EQ(playedSteps({"init\tUninstaller", "addinstance\tNougat32_1",
                           "set\tvtr.instance.Nougat32_1.dpi\t320", "commit"}),
              (Lines{"started", "added", "set", "committed"}));
    EXPECT_TRUE(confHas("vtr.instance.Nougat32_1.dpi=\"320\""));
}

TEST_F(DotnetTest, ListeningLeavesNoErrorInTheLog) {
    EXPECT_EQ(playedSteps({"init\tUninstaller", "listen", "fini"}),
              (Lines{"started", "listening", "ended"}));
    EXPECT_GT(log().size(), 3u);
    for (const std::string& line : log()) EXPECT_EQ(line.substr(0, 2), "I ") << line;
}

TEST_F(DotnetTest, WorkWhoseEventDoesNotComeTimesOut) {
    installFolder = standinProgram("");
    data.write("standin.script", "on installApk event apk-install-completed DotnetTest 0 other\n");
    EXPECT_EQ(playedSteps({"init\tUninstaller", "listen",
                           "installapk\tDotnetTest\tC:\\a.apk\tshort", "events\t1"}),
              (Lines{"started", "listening", "time-out",
                     "event apkInstallCompleted DotnetTest|0|other"}));
}
