// The C# binding in .NET for Windows: hosts over the real library, with the stand-ins.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "EveryEvent.h"
#include "support/WindowsForTests.h"

namespace {

// How a .NET host ends where a native one ends with kFatalStatus. The runtime hands the break on to
// RaiseFailFastException, and Wine ends every process that calls this function with one status.
constexpr std::uint32_t kFatalStatusInDotnet = 0xC0000602;

constexpr const char* kConf =
    "vtr.enable_adb_access=\"0\"\n"
    "vtr.instance.Nougat64.cpus=\"4\"\n"
    "vtr.instance.Nougat64.display_name=\"Größe 日本\"\n"
    "vtr.instance.Nougat64.dpi=\"240\"\n"
    "vtr.instance.Nougat64.ram=\"4096\"\n"
    "vtr.shared_folders=\"a,b\"\n";

const Lines kInstances = {"instances [",
                          "    {",
                          "        \"cpu\": 4,",
                          "        \"deviceProfile\": \"\",",
                          "        \"displayName\": \"Größe 日本\",",
                          "        \"graphicsEngine\": \"\",",
                          "        \"graphicsRenderer\": \"\",",
                          "        \"imageName\": \"Nougat64\",",
                          "        \"instance\": \"Nougat64\",",
                          "        \"ram\": 4096",
                          "    }",
                          "]",
                          ""};

std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

std::string withDoubledBackslashes(const std::string& text) {
    std::string result;
    for (const char c : text) result.append(c == '\\' ? 2 : 1, c);
    return result;
}

class DotnetTest : public PlainHostTest {
 protected:
    DotnetTest() { writeConf(kConf); }

    ChildOptions standinOptions() const {
        ChildOptions options;
        options.environment = {{"QX_STANDIN_CLIENTS", "Uninstaller"},
                               {"QX_STANDIN_OUTPUT", data / "standin.txt"},
                               {"QX_STANDIN_SCRIPT", data / "standin.script"}};
        return options;
    }

    ChildProcess startHost(const Script& scenario) const {
        Script all{environment("QX_DOTNET_HOST"), library, data.path(), installFolder};
        all.insert(all.end(), scenario.begin(), scenario.end());
        return ChildProcess(environment("QX_DOTNET"), all, standinOptions());
    }

    // The lines of a host, up to the "finished" that is expected.
    static Lines linesUpToTheEnd(ChildProcess& host) {
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.err, "");
        Lines lines = linesOf(result.out);
        EXPECT_EQ(lines.empty() ? "" : lines.back(), "finished") << result.out;
        if (!lines.empty()) lines.pop_back();
        return lines;
    }

    Lines played(const Script& scenario) const {
        ChildProcess host = startHost(scenario);
        return linesUpToTheEnd(host);
    }

    // A player that plays the script's events, as soon as the host listens.
    ChildProcess startPlayer(ChildProcess& host, const std::string& script) const {
        data.write("standin.script", script);
        EXPECT_EQ(host.readLine(), "listening");
        return ChildProcess(standinProgram("QX-Player.exe"), {"--instance", "DotnetTest"},
                            standinOptions());
    }

    // What a host prints that is sent these events.
    Lines playedWithEvents(const Script& scenario, const std::string& script) const {
        ChildProcess host = startHost(scenario);
        const ChildProcess player = startPlayer(host, script);
        return linesUpToTheEnd(host);
    }

    void expectFatal(ChildProcess& host) const {
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, kFatalStatusInDotnet);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(
            log().back().rfind("E UTL Uninstaller_bridge FATAL: DEBUG BREAK: Source/utl/Utl:", 0),
            0u)
            << log().back();
    }

    // A host of Scenario.cs. The parts of a step are joined by tabs.
    ChildProcess startSteps(const Script& steps, const std::string& folder) const {
        Script all{environment("QX_DOTNET_SCENARIO"), library, folder, installFolder};
        all.insert(all.end(), steps.begin(), steps.end());
        ChildOptions options = standinOptions();
        options.environment.emplace_back("QX_STANDIN_SECONDS", "1");  // they hold the host's output
        return ChildProcess(environment("QX_DOTNET"), all, options);
    }

    Lines playedSteps(const Script& steps) const {
        ChildProcess host = startSteps(steps, data.path());
        return linesUpToTheEnd(host);
    }

    // With the stand-ins, which report that the work is done.
    Lines playedWithStandins(const Script& steps) {
        installFolder = standinProgram("");
        data.write("standin.script", "");
        return playedSteps(steps);
    }

    Lines preflight() const { return playedSteps({"preflight"}); }

    std::string library = builtProgram("QX-Bridge.dll");
    std::string installFolder = "C:\\None\\";
};

}  // namespace

TEST_F(DotnetTest, InstancesAndApps) {
    for (const char* folder : {"Engine\\Nougat64\\AppCache", "Engine\\Broken\\AppCache"}) {
        data.makeFolder(folder);
    }
    data.write("Engine\\Nougat64\\AppCache\\AppCache.json",
               "[{\"activity\":\"com.b.Main\",\"appLabel\":\"日本\",\"package\":\"com.b\","
               "\"versionCode\":-2,\"versionName\":\"2\"}]");
    data.write("Engine\\Broken\\AppCache\\AppCache.json", "[3]");
    const std::string icon =
        withDoubledBackslashes(data.path() + "\\") + "Engine/Nougat64/AppCache/com.b.png";
    EXPECT_EQ(played({"listings"}),
              with(kInstances, {"apps [", "    {", "        \"activity\": \"com.b.Main\",",
                                "        \"appLabel\": \"日本\",",
                                "        \"iconFilePath\": \"" + icon + "\",",
                                "        \"package\": \"com.b\",", "        \"versionCode\": -2,",
                                "        \"versionName\": \"2\"", "    }", "]", "", "no apps [",
                                "]", "", "bridgeGetInstalledApps -1"}));
}

TEST_F(DotnetTest, ChangesAreSeenAtOnceAndByTheFileAfterTheCommit) {
    EXPECT_EQ(played({"settings"}), (Lines{"name Größe 日本", "dpi 240", "adb False", "folders a|b",
                                           "name \"Ünï\" \\ 第二 😀", "dpi -2147483648", "adb True",
                                           "folders Bilder|Größe", "committed"}));
    const std::string text = data.read("vantrel.conf");
    for (const char* line :
         {"vtr.instance.Nougat64.display_name=\"\"Ünï\" \\ 第二 😀\"\n",
          "vtr.instance.Nougat64.dpi=\"-2147483648\"\n", "vtr.instance.Nougat64.ram=\"4096\"\n",
          "vtr.enable_adb_access=\"1\"\n", "vtr.shared_folders=\"Bilder,Größe\"\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    }
}

TEST_F(DotnetTest, FailingCommitsThrowTheirCodesAndLeaveTheFile) {
    EXPECT_EQ(played({"failing commits"}), (Lines{"bridgeConfCommit 22", "bridgeConfCommit 7",
                                                  "bridgeConfCommitToFile 2", "committed"}));
    EXPECT_EQ(data.read("vantrel.conf"), kConf);
    EXPECT_NE(data.read("Größe.conf").find("vtr.locale=\"de-DE\"\n"), std::string::npos);
}

TEST_F(DotnetTest, AConfigurationThatDoesNotLoadThrows) {
    writeConf("no line of a configuration\n");
    const ChildResult result = startHost({"listings"}).finish();
    EXPECT_EQ(result.status, 1u);
    EXPECT_EQ(result.out,
              "BridgeException: bridgeApiInit failed with -1 (XERR_FAILURE: it failed; the log has "
              "the cause) for " +
                  confPath() + "; the log " + data / "Logs\\Player.log" + " has the cause\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(DotnetTest, ALibraryThatIsMissingThrows) {
    library = data / "QX-Bridge.dll";
    const ChildResult result = startHost({"listings"}).finish();
    EXPECT_EQ(result.status, 1u);
    EXPECT_EQ(result.out, "DllNotFoundException: " + library + ": error 126\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(DotnetTest, WithoutTheFileAndWithALogOfItsOwn) {
    EXPECT_EQ(played({"own log", data / "own ü.log"}), (Lines{"instances [", "]", ""}));
    EXPECT_EQ(logMessages(data.read("own ü.log")).size(), 3u);
    EXPECT_FALSE(data.has("Logs\\Player.log"));
}

TEST_F(DotnetTest, ALogInFoldersThatTheLibraryMakesAndWithALongPath) {
    const std::string folder(120, 'x');
    const std::string log = data / (folder + "\\" + folder + "\\own.log");
    EXPECT_EQ(played({"own log", log}), (Lines{"instances [", "]", ""}));
    EXPECT_EQ(played({"own log", log}), (Lines{"instances [", "]", ""}));
}

TEST_F(DotnetTest, AProgramIsLaunchedReportsTheAppAndIsShutDown) {
    installFolder = standinProgram("");
    data.write("standin.script", "");
    EXPECT_EQ(played({"programs"}), (Lines{"listening", "appDisplayed DotnetTest|com.größe"}));
    std::string said;
    for (int i = 0; i < 2000 && said.find("\nended: ") == std::string::npos; ++i) {
        ::Sleep(5);
        said = data.read("standin.txt");
    }
    for (const char* text :
         {"\"--cmd\" \"launchApp\" \"--package\" \"com.größe\"\n", "\nplrShutdownRpc(true)\n"}) {
        EXPECT_NE(said.find(text), std::string::npos) << text << said;
    }
}

TEST_F(DotnetTest, AProgramThatIsMissingThrows) {
    EXPECT_EQ(played({"no program"}), Lines{"bridgeLaunchApp 2"});
}

TEST_F(DotnetTest, AllNineEventsArriveWithTheirValues) {
    EXPECT_EQ(playedWithEvents({"nine events"}, everyEventScript()), everyLine());
}

TEST_F(DotnetTest, WhatAHandlerThrowsIsReportedAndTheNextHandlerAndEventCome) {
    EXPECT_EQ(playedWithEvents({"throwing handler"}, "event-flood 2 app-displayed N p{n}\n"),
              (Lines{"failed: the host's own", "next handler p1", "next handler p2"}));
}

TEST_F(DotnetTest, CollectionsAmongEventsTakeNoHandlerAway) {
    EXPECT_EQ(playedWithEvents({"collections", "1000"}, "event-flood 1000 app-displayed N p{n}\n"),
              Lines{"in order 1000"});
}

TEST_F(DotnetTest, NoHandlerRunsAfterTheEndAmongEvents) {
    EXPECT_EQ(playedWithEvents({"end among events"}, "event-flood 20000 app-displayed N p{n}\n"),
              Lines{"silent since the end"});
}

TEST_F(DotnetTest, ASecondSessionIsRefusedAndTheFirstKeepsItsEvents) {
    EXPECT_EQ(
        playedWithEvents({"second session"}, "event app-displayed N p\n"),
        (Lines{"appDisplayed N|p", "while it runs: there is a session already: a process has one",
               "after its end: the session has ended: the library starts once in a process"}));
}

TEST_F(DotnetTest, DisposeInAHandlerIsRefusedAndTheSessionGoesOn) {
    EXPECT_EQ(
        playedWithEvents({"dispose in handler"}, "event-flood 2 app-displayed N p{n}\n"),
        (Lines{"handler p1", "failed: Dispose() must not be called inside a handler", "handler p2",
               "failed: Dispose() must not be called inside a handler", "adb False"}));
}

TEST_F(DotnetTest, AHandlerEndsTheProcess) {
    for (const char* scenario : {"exit in handler", "exit in handler during dispose"}) {
        SCOPED_TRACE(scenario);
        ChildProcess host = startHost({scenario});
        const ChildProcess player = startPlayer(host, "event app-displayed N p\n");
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, 3u);
        EXPECT_EQ(result.out + result.err, "");
    }
}

TEST_F(DotnetTest, TheEndOfMainDoesNotWaitForAHandler) {
    EXPECT_EQ(playedWithEvents({"stuck handler"}, "event app-displayed N p\n"), Lines{});
}

TEST_F(DotnetTest, MainEndsAmongEvents) {
    EXPECT_EQ(playedWithEvents({"among events"}, "event-flood 20000 app-displayed N p{n}\n"),
              Lines{});
}

TEST_F(DotnetTest, ALibraryInTheCurrentFolderIsFoundByItsName) {
    ChildOptions options = standinOptions();
    options.folder = library.substr(0, library.find_last_of("\\/"));
    const ChildResult result = runChild(
        environment("QX_DOTNET"),
        {environment("QX_DOTNET_HOST"), "QX-Bridge.dll", data.path(), installFolder, "no program"},
        options);
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.out, "bridgeLaunchApp 2\nfinished\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(DotnetTest, AWrongKeyThrowsAndTheHostLives) {
    const std::string missing = "there is no key \"vtr.no_such_key\"";
    EXPECT_EQ(playedWithEvents({"wrong keys"}, "event app-displayed N p\n"),
              (Lines{"handler: " + missing, missing, "\"vtr.locale\" is a string, not an i32",
                     "\"vtr.locale\" is a string, not an i64",
                     "\"vtr.locale\" is a string, not an i64", "adb False"}));
}

TEST_F(DotnetTest, AFatalErrorEndsTheProcess) {
    installFolder = "";
    ChildProcess host = startHost({"fatal", "no install folder"});
    expectFatal(host);
}

TEST_F(DotnetTest, AFatalErrorInAHandlerEndsTheProcess) {
    installFolder = "";
    ChildProcess host = startHost({"fatal", "in a handler"});
    const ChildProcess player = startPlayer(host, "event app-displayed N p\n");
    expectFatal(host);
}

TEST_F(DotnetTest, ACommitGoesOnInsideWhileAnotherProgramHasTheFile) {
    EXPECT_EQ(played({"commit inside"}),
              (Lines{"cancelled", "commit is inside and reads go on: de-DE", "committed"}));
    EXPECT_NE(data.read("vantrel.conf").find("vtr.locale=\"de-DE\"\n"), std::string::npos);
}

TEST_F(DotnetTest, TheEndWaitsForACommitThatGoesOnInside) {
    EXPECT_EQ(played({"end during a commit"}), (Lines{"end is waiting", "ended"}));
    EXPECT_NE(data.read("vantrel.conf").find("vtr.locale=\"de-DE\"\n"), std::string::npos);
}

TEST_F(DotnetTest, EventsAreAwaitedAndTheirContinuationMayEndTheSession) {
    EXPECT_EQ(playedWithEvents({"awaiting"}, "event-flood 2 app-displayed N p{n}\n"),
              (Lines{"displayed p1", "displayed p2", "instance Nougat64", "last end"}));
    EXPECT_NE(data.read("vantrel.conf").find("vtr.locale=\"p2\"\n"), std::string::npos);
}

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
