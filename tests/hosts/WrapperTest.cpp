// What bridge.hpp adds to the library.
#include <chrono>
#include <string>

#include "EveryEvent.h"
#include "support/EventPackets.h"
#include "support/RawServer.h"
#include "support/WindowsForTests.h"

namespace {

constexpr const char* kConf =
    "vtr.instance.Nougat64.dpi=\"240\"\n"
    "vtr.instance.Nougat64.ram=\"4096\"\n";

class WrapperTest : public PlainHostTest {
 protected:
    WrapperTest() { writeConf(kConf); }

    ChildProcess startScene(const std::string& scene) const {
        ChildOptions options;
        options.environment = {{"QX_STANDIN_CLIENTS", "none"},
                               {"QX_STANDIN_SECONDS", "1"},
                               {"QX_STANDIN_OUTPUT", data / "standin.txt"},
                               {"QX_STANDIN_SCRIPT", data / "standin.script"}};
        options.limit = std::chrono::seconds(120);
        return ChildProcess(builtProgram("wrapper_host.exe"), {data.path(), installFolder, scene},
                            options);
    }

    // The lines of a host, without those at its start and its "finished".
    static Lines rest(ChildProcess& host) {
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, 0u) << result.out << result.err;
        Lines lines = linesOf(result.out);
        EXPECT_EQ(lines.empty() ? "" : lines.back(), "finished") << result.out << result.err;
        if (!lines.empty()) lines.pop_back();
        if (!lines.empty() && lines[0] == kNotStarted) lines.erase(lines.begin());
        return lines;
    }

    Lines played(const std::string& scene) const {
        ChildProcess host = startScene(scene);
        return rest(host);
    }

    // The same for a host that gets these packets when it listens.
    Lines playedWith(const std::string& scene, const std::string& packets) const {
        ChildProcess host = startScene(scene);
        Lines before;
        do {
            before.push_back(host.readLine());
        } while (before.back() != "listening" && before.size() < 9);
        RawPipe pipe(connectToHelper());
        EXPECT_TRUE(pipe.write(packets));
        before.erase(before.begin());
        return with(before, rest(host));
    }

    static std::string packet(const std::string& name, const Words& words) {
        return eventPacket(knownEvent(name), words);
    }

    static constexpr const char* kNotStarted = "logic_error call init() first";

    std::string installFolder = "C:\\None\\";
};

}  // namespace

TEST_F(WrapperTest, KeysHaveATextATypeAndTheRightValues) {
    EXPECT_EQ(played("typed"),
              (Lines{"vtr.instance.Nougat64.status.adb_port vtr.status.raw_mode",
                     "i32 240 dots per inch x86,x64,arm,arm64", "1 320 Größe [a][][b]",
                     "KeyError there is no instance \"Nougat65\"; did you mean \"Nougat64\"?"}));
}

TEST_F(WrapperTest, AWrongKeyIsAnExceptionWithASuggestion) {
    EXPECT_EQ(played("wrong keys"),
              (Lines{"KeyError \"vtr.locale\" is a string, not an i64",
                     "KeyError \"vtr.locale\" is a string, not an i64",
                     "KeyError there is no key \"vtr.locael\"; did you mean \"vtr.locale\"?",
                     "KeyError there is no key \"vtr.loc\"",
                     "KeyError there is no key \"vtr.enable_adb_accexxx\"; did you mean "
                     "\"vtr.enable_adb_access\"?",
                     "KeyError there is no instance \"X\"",
                     "KeyError there is no key \"vtr.instance.Nougat64.dpx\"; did you mean "
                     "\"vtr.instance.Nougat64.dpi\"?",
                     "KeyError there is no key \"vtr.instance.Nougat64\"",
                     "KeyError there is no key \"locale\"", "KeyError there is no key \"\"",
                     "vtr.locael vtr.locale"}));
}

TEST_F(WrapperTest, AnErrorHasItsOperationCodeNameTextFileAndLog) {
    data.makeFolder("Engine\\Broken\\AppCache");
    data.write("Engine\\Broken\\AppCache\\AppCache.json", "[3]");
    const std::string log = "; the log " + (data / "Logs\\Player.log") + " has the cause";
    const std::string noFile = " failed with 2 (XERR_NOENT: no such file or folder) for ";
    EXPECT_EQ(
        played("errors"),
        (Lines{"Error bridgeConfCommit failed with 22 (XERR_INVAL: an argument was refused) for " +
                   confPath() + log,
               "Error bridgeConfCommitToFile failed with 22 (XERR_INVAL: an argument was refused) "
               "for " +
                   (data / "copy.conf") + log,
               "Error bridgeLaunchApp" + noFile + "C:\\None\\QX-Player.exe" + log,
               "Error bridgeInstallApk" + noFile + "C:\\a.apk" + log,
               "Error bridgeInstallImage" + noFile + "C:\\None\\QX-MultiInstanceManager.exe" + log,
               "Error bridgeGetInstalledApps failed with -1 (XERR_FAILURE: it failed; the log has "
               "the cause)" +
                   log,
               "bridgeLaunchApp failed with 101223 (Windows error 1223)" + log,
               "bridgeLaunchApp|2|XERR_NOENT|no such file or folder", "-1"}));
}

TEST_F(WrapperTest, ValuesOfAnotherProgramAreUsedAfterTheNextLoad) {
    const std::string notLoaded =
        "KeyError instance \"Nougat64_2\" is not loaded yet: commit, or wait for "
        "instanceListUpdated";
    EXPECT_EQ(played("changed"),
              (Lines{notLoaded, notLoaded, "300 1",
                     "KeyError \"vtr.instance.Nougat64.dpi\" has a value that cannot be read: "
                     "\"abc\"",
                     "KeyError \"vtr.status.raw_mode\" has a value that cannot be read: \"x\"",
                     "KeyError \"vtr.instance.Nougat64.dpi\" has a value that cannot be read: "
                     "\"abc\"",
                     "240"}));
}

TEST_F(WrapperTest, AQueueHasTheEventsInOrderUntilItOverflowsOrTheLibraryEnds) {
    EXPECT_EQ(playedWith("queue", packet("app-displayed", {"Nougat64", "p"}) +
                                      packet("app-uninstalled", {"Nougat64", "p"}) +
                                      packet("instance-list-updated", {})),
              (Lines{"logic_error there is no event \"appdisplayed\"", "none yet", "listening",
                     "appDisplayed appUninstalled instanceListUpdated ",
                     "appDisplayed instanceListUpdated ", "appDisplayed ",
                     "more than 1 events came before they were taken", "goes on",
                     "no event after the end", "ended", "none after the end"}));
}

TEST_F(WrapperTest, CallsThatWouldDeadlockAreRefusedInACallback) {
    installFolder = standinProgram("");
    data.write("standin.script", "on launchApp pause 1\n");
    EXPECT_EQ(playedWith("inside", packet("app-displayed", {"Nougat64", "p"})),
              (Lines{"listening", "logic_error pop() must not be called inside a callback",
                     "logic_error listen() must not be called inside a callback",
                     "logic_error wait() must not be called inside a callback", "goes on"}));
}

TEST_F(WrapperTest, EachEventIsTheOutcomeOfOneWorkInTheOrderOfTheCalls) {
    installFolder = standinProgram("");
    data.write("standin.script", "");
    const std::string created = packet("create-instance-completed", {"0", "Nougat64_1"}) +
                                packet("create-instance-completed", {"1", "Nougat64_2"}) +
                                packet("create-instance-completed", {"2", "Nougat64_3"});
    const std::string installed = packet("apk-install-completed", {"Nougat64", "3", "C:\\a.apk"}) +
                                  packet("apk-install-completed", {"Nougat32", "4", "C:\\a.apk"}) +
                                  packet("apk-install-completed", {"Nougat64", "5", "C:\\a.apk"});
    const std::string image = packet("image-install-progress", {"Nougat32", "1", "25"}) +
                              packet("image-install-progress", {"Nougat64", "2", "100"}) +
                              packet("image-install-progress", {"Nougat32", "1", "50"}) +
                              packet("image-install-progress", {"Nougat32", "2", "100"});
    EXPECT_EQ(
        playedWith("works", created + installed + image),
        (Lines{"logic_error call listen() first", "listening", "created 0 2", "installed 3 5 3",
               "image 2 after 25 50 ", "time-out", "no outcome after the end"}));
}

TEST_F(WrapperTest, AWorkWhoseProgramDoesNotStartReportsTheReason) {
    EXPECT_EQ(played("no program"),
              (Lines{"2",
                     "Error bridgeCreateFreshInstance failed with 2 (XERR_NOENT: no such file or "
                     "folder) for C:\\None\\QX-MultiInstanceManager.exe; the log " +
                         (data / "Logs\\Player.log") + " has the cause"}));
}

TEST_F(WrapperTest, ListenReportsItsOwnProcess) {
    EXPECT_EQ(played("listen"), (Lines{"listening itself", "listening",
                                       "no process has the events of client \"Helper\"; the log " +
                                           (data / "Logs\\Player.log") + " has the cause"}));
}

TEST_F(WrapperTest, ListenReportsTheProcessThatHasTheEvents) {
    ChildProcess first = startScene("hold");
    EXPECT_EQ(first.readLine(), kNotStarted);
    EXPECT_EQ(first.readLine(), "listening");
    const std::string has = "process " + std::to_string(::GetProcessId(first.handle())) +
                            " has the events of client \"Helper\"";
    EXPECT_EQ(played("listen"), (Lines{has + "another", has, has}));
    first.kill();
}

TEST_F(WrapperTest, PreflightReportsTheProblemsOfTheCHeader) {
    const std::string error =
        "bridgeApiInit failed with 22 (XERR_INVAL: an argument was refused); the log has the cause";
    EXPECT_EQ(played("preflight"), (Lines{"0 0", error}));
    data.makeFolder("Logs\\Player.log");
    EXPECT_EQ(played("preflight"),
              (Lines{"1 0",
                     "the log " + (data / "Logs\\Player.log") +
                         " cannot be opened (Windows error 5)|give this user the right to "
                         "write it, or name another log file",
                     error}));
}
