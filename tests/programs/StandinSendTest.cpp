// Bytes that the real stand-ins send, received by raw servers in place of front ends.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "support/ChildProcess.h"
#include "support/EventPackets.h"
#include "support/RawServer.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"

namespace {

using Texts = std::vector<std::string>;

// A front end that keeps bytes, with its own client id.
class FrontEnd {
 public:
    explicit FrontEnd(const std::string& id, std::size_t bufferSize = 0)
        : client(id + std::to_string(::GetCurrentProcessId())),
          server_(
              "vtr_" + client + "_bridge_nvo", [this](RawPipe& pipe) { add(pipe.readAll()); },
              bufferSize) {}

    std::string server() const { return "vtr_" + client + "_bridge_nvo"; }

    // Waits for `count` connections and returns the bytes of each.
    Texts connections(std::size_t count) {
        std::unique_lock<std::mutex> guard(lock_);
        EXPECT_TRUE(changed_.wait_for(guard, std::chrono::seconds(30),
                                      [&] { return connections_.size() >= count; }));
        return connections_;
    }

    const std::string client;

 private:
    void add(std::string bytes) {
        if (bytes.empty()) return;  // a probe
        const std::lock_guard<std::mutex> guard(lock_);
        connections_.push_back(std::move(bytes));
        changed_.notify_all();
    }

    std::mutex lock_;
    std::condition_variable changed_;
    Texts connections_;
    RawServer server_;
};

class StandinSendTest : public ::testing::Test {
 protected:
    ChildOptions options(const std::string& clients, const std::string& script = {},
                         const std::string& format = {}) const {
        ChildOptions result;
        result.environment = {{"QX_STANDIN_OUTPUT", folder / "out.txt"},
                              {"QX_STANDIN_SCRIPT", folder.write("script", script)},
                              {"QX_STANDIN_CLIENTS", clients},
                              {"QX_STANDIN_FORMAT", format},
                              {"QX_STANDIN_SECONDS", "1"}};
        return result;
    }

    // Runs a stand-in to its end and returns its exit status.
    static unsigned run(const Texts& arguments, const ChildOptions& with,
                        const std::string& name = "QX-Player.exe") {
        return runChild(standinProgram(name), arguments, with).status;
    }

    // Arguments of a player for an instance that only this test uses.
    static Texts player(const Texts& more = {}) {
        Texts all{"--instance", "Send" + std::to_string(::GetCurrentProcessId())};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    // The lines of the output file about events and errors.
    Texts eventLines() const {
        Texts lines;
        const std::string text = folder.read("out.txt");
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find('\n', at);
            const std::string line = text.substr(at, end - at);
            if (line.rfind("event ", 0) == 0 || line.rfind("error: ", 0) == 0 ||
                line.rfind("{\"event\"", 0) == 0) {
                lines.push_back(line);
            }
            at = end + 1;
        }
        return lines;
    }

    TempFolder folder;
};

}  // namespace

TEST_F(StandinSendTest, AnEventFromTheCommandLineArrives) {
    FrontEnd frontEnd("Hand");
    EXPECT_EQ(run({"--event", "app-displayed", "Jeux 日本", "say \"hi\" \\\\s\\"},
                  options(frontEnd.client)),
              0u);
    EXPECT_EQ(frontEnd.connections(1),
              Texts{appDisplayedPacket("Jeux 日本", "say \"hi\" \\\\s\\")});
    EXPECT_EQ(eventLines(),
              Texts{"event app-displayed(\"Jeux 日本\",\"say \\\"hi\\\" \\\\\\\\s\\\\\") -> " +
                    frontEnd.server()});
}

TEST_F(StandinSendTest, TheManagerSendsToo) {
    FrontEnd frontEnd("Manager");
    EXPECT_EQ(run({"--event", "instance-list-updated"}, options(frontEnd.client, "", "json"),
                  "QX-MultiInstanceManager.exe"),
              0u);
    EXPECT_EQ(frontEnd.connections(1), Texts{instanceListUpdatedPacket()});
    EXPECT_EQ(eventLines(), Texts{R"({"event":"instance-list-updated","arguments":[],"to":")" +
                                  frontEnd.server() + "\"}"});
}

TEST_F(StandinSendTest, EveryFrontEndGetsTheEvent) {
    FrontEnd first("First");
    FrontEnd second("Second");
    EXPECT_EQ(run({"--event", "app-uninstalled", "N", "p"},
                  options(first.client + ",Absent," + second.client)),
              0u);
    EXPECT_EQ(first.connections(1), Texts{appUninstalledPacket("N", "p")});
    EXPECT_EQ(second.connections(1), Texts{appUninstalledPacket("N", "p")});
    EXPECT_EQ(eventLines(), (Texts{R"(event app-uninstalled("N","p") -> )" + first.server(),
                                   R"(event app-uninstalled("N","p") -> )" + second.server()}));
}

TEST_F(StandinSendTest, TheStatusShowsThatThereIsNoFrontEnd) {
    EXPECT_EQ(run({"--event", "instance-list-updated"}, options("Absent")), 3u);
    EXPECT_EQ(eventLines(), Texts{"event instance-list-updated() -> nobody"});
}

TEST_F(StandinSendTest, NoneMeansNoFrontEnd) {
    EXPECT_EQ(run({"--event", "instance-list-updated"}, options("none")), 3u);
    EXPECT_EQ(eventLines(), Texts{});
}

TEST_F(StandinSendTest, MisuseSendsNothing) {
    FrontEnd frontEnd("Misuse");
    EXPECT_EQ(run({"--event"}, options(frontEnd.client)), 2u);
    EXPECT_EQ(run({"--event", "app-shown", "N"}, options(frontEnd.client)), 2u);
    EXPECT_EQ(eventLines(), (Texts{"error: no event is named", "error: no such event: app-shown"}));
}

TEST_F(StandinSendTest, HelpListsTheEvents) {
    const ChildResult result =
        runChild(standinProgram("QX-Player.exe"), {"--help"}, options("none"));
    EXPECT_EQ(result.status, 0u);
    EXPECT_NE(result.out.find("\n    create-instance-completed status:i32 instance\n"),
              std::string::npos)
        << result.out;
}

TEST_F(StandinSendTest, EventsWithoutAPauseShareAConnection) {
    FrontEnd frontEnd("Moment");
    EXPECT_EQ(run(player({"--cmd", "installApk", "--filepath", "a.apk"}), options(frontEnd.client)),
              0u);
    EXPECT_EQ(frontEnd.connections(1),
              Texts{appInstalledPacket(player()[1], "a", "a.MainActivity", "a", 1, "1.0", "", 0) +
                    apkInstallCompletedPacket(player()[1], 0, "a.apk")});
}

TEST_F(StandinSendTest, TheScriptsEventsComeInTheirOrder) {
    FrontEnd frontEnd("Script");
    EXPECT_EQ(run(player({"--cmd", "launchApp", "--package", "p"}),
                  options(frontEnd.client,
                          "event instance-configuration-changed \"a b\"\npause 10\n"
                          "event app-displayed N p")),
              0u);
    EXPECT_EQ(frontEnd.connections(3),
              (Texts{instanceConfigurationChangedPacket("a b"), appDisplayedPacket("N", "p"),
                     appDisplayedPacket(player()[1], "p")}));
}

TEST_F(StandinSendTest, TheScriptsEventsOfACommandReplaceTheDefault) {
    FrontEnd frontEnd("Replace");
    const std::string script = "on launchApp event app-uninstalled N p\non launchUrl pause 1";
    EXPECT_EQ(
        run(player({"--cmd", "launchApp", "--package", "p"}), options(frontEnd.client, script)),
        0u);
    EXPECT_EQ(eventLines(), Texts{R"(event app-uninstalled("N","p") -> )" + frontEnd.server()});
    EXPECT_EQ(frontEnd.connections(1), Texts{appUninstalledPacket("N", "p")});
}

TEST_F(StandinSendTest, ARequestCanCauseEvents) {
    FrontEnd frontEnd("Request");
    ChildProcess child(standinProgram("QX-Player.exe"), player(),
                       options(frontEnd.client,
                               "on plrLaunchAppRpc event app-displayed N p\n"
                               "on plrShutdownRpc pause 60000\n"
                               "on plrShutdownRpc event app-uninstalled N p"));
    void* pipe = nullptr;
    for (int i = 0; i < 1000 && pipe == nullptr; ++i) {
        ::Sleep(10);
        pipe = connectRaw("vtr_plr_" + player()[1] + "_nvo");
    }
    ASSERT_NE(pipe, nullptr);
    RawPipe client(pipe);
    ASSERT_TRUE(client.write(packetOf(2006, textField("p"))));
    EXPECT_EQ(frontEnd.connections(1), Texts{appDisplayedPacket("N", "p")});
    ASSERT_TRUE(client.write(packetOf(2000, bytesOf(std::int32_t{0}))));
    EXPECT_EQ(child.finish().status, 0u) << "the shutdown ends the pause";
    EXPECT_EQ(frontEnd.connections(2)[1], appUninstalledPacket("N", "p"));
    const std::string output = folder.read("out.txt");
    EXPECT_LT(output.find("event app-uninstalled("), output.find("ended: "));
}

TEST_F(StandinSendTest, ASplitEventIsWhole) {
    FrontEnd frontEnd("Split");
    EXPECT_EQ(
        run({"--event", "app-displayed", "N", "p"}, options(frontEnd.client, "event-split 13")),
        0u);
    EXPECT_EQ(frontEnd.connections(1), Texts{appDisplayedPacket("N", "p")});
}

TEST_F(StandinSendTest, GarbageFollowsEachEventOnItsOwnConnection) {
    FrontEnd frontEnd("Garbage");
    EXPECT_EQ(run(player(),
                  options(frontEnd.client, "event-garbage 4\nevent-flood 2 app-displayed N p{n}")),
              0u);
    EXPECT_EQ(frontEnd.connections(2), (Texts{appDisplayedPacket("N", "p1") + "####",
                                              appDisplayedPacket("N", "p2") + "####"}));
}

TEST_F(StandinSendTest, ClosingEarlySendsHalfAnEvent) {
    FrontEnd frontEnd("Early");
    EXPECT_EQ(
        run({"--event", "app-displayed", "N", "p"}, options(frontEnd.client, "event-close-early")),
        0u);
    const std::string whole = appDisplayedPacket("N", "p");
    EXPECT_EQ(frontEnd.connections(1), Texts{whole.substr(0, whole.size() / 2)});
    EXPECT_EQ(eventLines(),
              Texts{R"(event app-displayed("N","p") -> )" + frontEnd.server() + " cut at 12"});
}

TEST_F(StandinSendTest, AFloodIsOneConnection) {
    FrontEnd frontEnd("Flood");
    EXPECT_EQ(
        run(player(), options(frontEnd.client, "event-flood 1000 create-instance-completed {n} N")),
        0u);
    std::string expected;
    for (std::int32_t i = 1; i <= 1000; ++i) expected += createInstanceCompletedPacket(i, "N");
    EXPECT_EQ(frontEnd.connections(1), Texts{expected});
    EXPECT_EQ(eventLines().size(), 1000u);
}

TEST_F(StandinSendTest, BytesInThePipeSurviveTheSender) {
    FrontEnd frontEnd("Memory", 65536);
    EXPECT_EQ(run({"--event", "app-displayed", "N", "p"}, options(frontEnd.client)), 0u);
    EXPECT_EQ(frontEnd.connections(1), Texts{appDisplayedPacket("N", "p")});
}

TEST_F(StandinSendTest, ItWaitsForABusyFrontEnd) {
    FrontEnd frontEnd("Busy");
    void* const first = connectRaw(frontEnd.server());
    ASSERT_NE(first, nullptr);
    // The server creates its next instance once it has seen this client. Take that instance too.
    void* second = nullptr;
    for (int i = 0; i < 1000 && second == nullptr; ++i) {
        second = connectRaw(frontEnd.server());
        if (second == nullptr) ::Sleep(5);
    }
    ASSERT_NE(second, nullptr);
    ASSERT_EQ(connectRaw(frontEnd.server()), nullptr);
    ChildProcess sender(standinProgram("QX-Player.exe"), {"--event", "instance-list-updated"},
                        options(frontEnd.client));
    EXPECT_EQ(::WaitForSingleObject(sender.handle(), 300), static_cast<DWORD>(WAIT_TIMEOUT));
    RawPipe(first).close();
    RawPipe(second).close();
    EXPECT_EQ(sender.finish().status, 0u);
    EXPECT_EQ(frontEnd.connections(1), Texts{instanceListUpdatedPacket()});
}

TEST_F(StandinSendTest, AFrontEndThatLeavesIsAFailure) {
    const std::string client = "Leaves" + std::to_string(::GetCurrentProcessId());
    const std::string server = "vtr_" + client + "_bridge_nvo";
    RawServer frontEnd(
        server, [](RawPipe& pipe) { pipe.read(20); }, 0);
    EXPECT_EQ(run({"--event", "app-displayed", std::string(100, 'N'), "p"}, options(client)), 3u);
    EXPECT_EQ(eventLines(), Texts{"event app-displayed(\"" + std::string(100, 'N') +
                                  "\",\"p\") -> " + server + " failed"});
}
