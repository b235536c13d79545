// The C# binding in .NET for Windows: hosts with the real library and the stand-ins.
#include <string>

#include "DotnetHosts.h"
#include "support/WindowsForTests.h"

namespace {

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

constexpr const char* kOneEvent = "event app-displayed N p\n";
constexpr const char* kTwoEvents = "event-flood 2 app-displayed N p{n}\n";
constexpr const char* kFlood = "event-flood 20000 app-displayed N p{n}\n";

std::string withDoubledBackslashes(const std::string& text) {
    std::string result;
    for (const char c : text) result.append(c == '\\' ? 2 : 1, c);
    return result;
}

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
    EXPECT_EQ(played({"Listings"}),
              with(kInstances, {"apps [", "    {", "        \"activity\": \"com.b.Main\",",
                                "        \"appLabel\": \"日本\",",
                                "        \"iconFilePath\": \"" + icon + "\",",
                                "        \"package\": \"com.b\",", "        \"versionCode\": -2,",
                                "        \"versionName\": \"2\"", "    }", "]", "", "no apps [",
                                "]", "", "BridgeException: bridgeGetInstalledApps -1"}));
}

TEST_F(DotnetTest, ChangesAreSeenAtOnceAndByTheFileAfterTheCommit) {
    EXPECT_EQ(played({"Settings"}), (Lines{"name Größe 日本", "dpi 240", "adb False", "folders a|b",
                                           "name \"Ünï\" \\ 第二 😀", "dpi -2147483648", "adb True",
                                           "folders Bilder|Größe", "committed"}));
    for (const char* line :
         {"vtr.instance.Nougat64.display_name=\"\"Ünï\" \\ 第二 😀\"",
          "vtr.instance.Nougat64.dpi=\"-2147483648\"", "vtr.instance.Nougat64.ram=\"4096\"",
          "vtr.enable_adb_access=\"1\"", "vtr.shared_folders=\"Bilder,Größe\""}) {
        EXPECT_TRUE(confHas(line)) << line;
    }
}

TEST_F(DotnetTest, FailingCommitsThrowTheirCodesAndLeaveTheFile) {
    const std::string thrown = "BridgeException: bridgeConfCommit";
    EXPECT_EQ(played({"FailingCommits"}),
              (Lines{thrown + " 22", thrown + " 7", thrown + "ToFile 2", "committed"}));
    EXPECT_EQ(data.read("vantrel.conf"), kConf);
    EXPECT_NE(data.read("Größe.conf").find("vtr.locale=\"de-DE\"\n"), std::string::npos);
}

TEST_F(DotnetTest, AConfigurationThatDoesNotLoadThrows) {
    writeConf("no line of a configuration\n");
    expectResult(startHost({"Listings"}).finish(), 1,
                 "BridgeException: bridgeApiInit failed with -1 (XERR_FAILURE: it failed; the log "
                 "has the cause) for " +
                     confPath() + "; the log " + data / "Logs\\Player.log" + " has the cause\n");
}

TEST_F(DotnetTest, ALibraryThatIsMissingThrows) {
    library = data / "QX-Bridge.dll";
    expectResult(startHost({"Listings"}).finish(), 1,
                 "DllNotFoundException: " + library + ": error 126\n");
}

TEST_F(DotnetTest, WithoutTheFileAndWithALogOfItsOwn) {
    EXPECT_EQ(played({"OwnLog", data / "own ü.log"}), (Lines{"instances [", "]", ""}));
    EXPECT_EQ(logMessages(data.read("own ü.log")).size(), 3u);
    EXPECT_FALSE(data.has("Logs\\Player.log"));
}

TEST_F(DotnetTest, ALogInFoldersThatTheLibraryMakesAndWithALongPath) {
    const std::string folder(120, 'x');
    const std::string log = data / (folder + "\\" + folder + "\\own.log");
    EXPECT_EQ(played({"OwnLog", log}), (Lines{"instances [", "]", ""}));
    EXPECT_EQ(played({"OwnLog", log}), (Lines{"instances [", "]", ""}));
}

TEST_F(DotnetTest, AProgramIsLaunchedReportsTheAppAndIsShutDown) {
    installFolder = standinProgram("");
    data.write("standin.script", "");
    EXPECT_EQ(played({"Programs"}), (Lines{"listening", "appDisplayed DotnetTest|com.größe"}));
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
    EXPECT_EQ(played({"MissingProgram"}), Lines{"BridgeException: bridgeLaunchApp 2"});
}

TEST_F(DotnetTest, AllNineEventsArriveWithTheirValues) {
    EXPECT_EQ(playedWithEvents({"AllNineEvents"}, everyEventScript()), everyLine());
}

TEST_F(DotnetTest, AnExceptionOfAHandlerIsReportedAndTheNextHandlerAndEventCome) {
    EXPECT_EQ(playedWithEvents({"ThrowingHandler"}, kTwoEvents),
              (Lines{"failed: the host's own", "next handler p1", "next handler p2"}));
}

TEST_F(DotnetTest, CollectionsAmongEventsKeepTheHandlers) {
    EXPECT_EQ(playedWithEvents({"Collections"}, "event-flood 1000 app-displayed N p{n}\n"),
              Lines{"in order 1000"});
}

TEST_F(DotnetTest, NoHandlerRunsAfterTheEndAmongEvents) {
    EXPECT_EQ(playedWithEvents({"EndAmongEvents"}, kFlood), Lines{"silent since the end"});
}

TEST_F(DotnetTest, ASecondSessionIsRefusedAndTheFirstKeepsItsEvents) {
    EXPECT_EQ(playedWithEvents({"SecondSession"}, kOneEvent),
              (Lines{"appDisplayed N|p",
                     "while it runs: InvalidOperationException: there is already a session: a "
                     "process has one",
                     "after its end: InvalidOperationException: the session has ended: the library "
                     "starts once per process"}));
}

TEST_F(DotnetTest, ASecondListenerGetsTheProcessThatHasTheEvents) {
    ChildProcess first = startHost({"StuckHandler"});
    EXPECT_EQ(first.readLine(), "listening");
    const std::string id = std::to_string(::GetProcessId(first.handle()));
    EXPECT_EQ(played({"SecondListener"}), Lines{"ListenException: " + id + " process " + id +
                                                " has the events of client \"Uninstaller\""});
}

TEST_F(DotnetTest, DisposeInAHandlerIsRefusedAndTheSessionGoesOn) {
    EXPECT_EQ(
        playedWithEvents({"DisposeInHandler"}, kTwoEvents),
        (Lines{"handler p1", "failed: Dispose() must not be called inside a handler", "handler p2",
               "failed: Dispose() must not be called inside a handler", "adb False"}));
}

TEST_F(DotnetTest, AHandlerEndsTheProcess) {
    for (const char* scenario : {"ExitInHandler", "ExitInHandlerDuringDispose"}) {
        SCOPED_TRACE(scenario);
        ChildProcess host = startHost({scenario});
        const ChildProcess player = startPlayer(host, kOneEvent);
        expectResult(host.finish(), 3, "");
    }
}

TEST_F(DotnetTest, TheEndOfMainDoesNotWaitForAHandler) {
    EXPECT_EQ(playedWithEvents({"StuckHandler"}, kOneEvent), Lines{});
}

TEST_F(DotnetTest, MainEndsAmongEvents) {
    EXPECT_EQ(playedWithEvents({"MainEndsAmongEvents"}, kFlood), Lines{});
}

TEST_F(DotnetTest, ALibraryInTheCurrentFolderIsFoundByItsName) {
    ChildOptions options = standinOptions();
    options.folder = library.substr(0, library.find_last_of("\\/"));
    const ChildResult result = runChild(environment("QX_DOTNET"),
                                        {environment("QX_DOTNET_HOST"), "QX-Bridge.dll",
                                         data.path(), installFolder, "MissingProgram"},
                                        options);
    expectResult(result, 0, "BridgeException: bridgeLaunchApp 2\nfinished\n");
}

TEST_F(DotnetTest, AWrongKeyThrowsAndTheHostLives) {
    const std::string missing = "KeyException: there is no key \"vtr.no_such_key\"";
    const std::string wide = "KeyException: \"vtr.locale\" is a string, not an i64";
    EXPECT_EQ(
        playedWithEvents({"WrongKeys"}, kOneEvent),
        (Lines{"handler: " + missing, missing,
               "KeyException: \"vtr.locale\" is a string, not an i32", wide, wide, "adb False"}));
}

TEST_F(DotnetTest, AFatalErrorEndsTheProcess) {
    installFolder = "";
    ChildProcess host = startHost({"FatalLaunch"});
    expectFatal(host);
}

TEST_F(DotnetTest, AFatalErrorInAHandlerEndsTheProcess) {
    installFolder = "";
    ChildProcess host = startHost({"FatalLaunchInHandler"});
    const ChildProcess player = startPlayer(host, kOneEvent);
    expectFatal(host);
}

TEST_F(DotnetTest, ACommitGoesOnInsideWhileAnotherProgramHasTheFile) {
    EXPECT_EQ(played({"CommitInside"}),
              (Lines{"cancelled", "commit is inside and reads go on: de-DE", "committed"}));
    EXPECT_TRUE(confHas("vtr.locale=\"de-DE\""));
}

TEST_F(DotnetTest, TheEndWaitsForACommitThatGoesOnInside) {
    EXPECT_EQ(played({"EndDuringACommit"}), (Lines{"end is waiting", "ended"}));
    EXPECT_TRUE(confHas("vtr.locale=\"de-DE\""));
}

TEST_F(DotnetTest, EventsAreAwaitedAndTheirContinuationMayEndTheSession) {
    EXPECT_EQ(playedWithEvents({"AwaitingAndEnding"}, kTwoEvents),
              (Lines{"displayed p1", "displayed p2", "instance Nougat64", "last end"}));
    EXPECT_TRUE(confHas("vtr.locale=\"p2\""));
}
