// Events that `bridgectl events --record` writes and a stand-in replays.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>

#include "ProgramFixture.h"
#include "support/EventPackets.h"
#include "support/RawServer.h"

namespace {

class BridgectlRecordTest : public BridgectlFixture {
 protected:
    BridgectlRecordTest() {
        data.write("vantrel.conf", "vtr.instance.Nougat64.dpi=\"240\"\n");
        useStandins("LogCollector", "1");
    }

    ChildProcess record(const Arguments& more) const {
        return listen(joined({"events", "--record", file()}, more));
    }

    unsigned replay(const std::string& path) const {
        return runChild(standinProgram("QX-Player.exe"), {"--script", path}, options).status;
    }

    std::string file() const { return data / "trace.script"; }
};

// A front end that keeps the bytes it receives.
class Bytes {
 public:
    explicit Bytes(const std::string& name)
        : server_(name, [this](RawPipe& pipe) { add(pipe.readAll()); }) {}

    // Waits for `count` bytes.
    std::string take(std::size_t count) {
        std::unique_lock<std::mutex> guard(lock_);
        EXPECT_TRUE(changed_.wait_for(guard, std::chrono::seconds(30),
                                      [&] { return bytes_.size() >= count; }));
        return bytes_;
    }

 private:
    void add(const std::string& bytes) {
        const std::lock_guard<std::mutex> guard(lock_);
        bytes_ += bytes;
        changed_.notify_all();
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::string bytes_;
    RawServer server_;
};

}  // namespace

TEST_F(BridgectlRecordTest, ARoundTripHasTheSameBytes) {
    std::string packets;
    for (const KnownEvent& event : knownEvents()) packets += eventPacket(event, exampleOf(event));
    packets += appDisplayedPacket("", "say \"hi\" # C:\\ \xFF \x1B[31m\r");
    packets += appDisplayedPacket("two\nlines", " \t\n");
    packets += installImageProgressPacket("N", 2, 0.1);
    packets += instanceListUpdatedPacket();
    packets += createInstanceCompletedPacket(-2147483647 - 1, "日本");
    // The library adds a list update before the end of an image's installation.
    ChildProcess listener = record({"--count", std::to_string(knownEvents().size() + 6)});
    ASSERT_TRUE(RawPipe(connectWhenFree(kServer)).write(packets));
    const ChildResult result = listener.finish();
    ASSERT_EQ(result.status, 0u) << result.err;
    Bytes bytes(kServer);
    EXPECT_EQ(replay(file()), 0u);
    EXPECT_EQ(bytes.take(packets.size()), packets);
}

TEST_F(BridgectlRecordTest, AReplayKeepsThePauses) {
    const std::string script =
        data.write("sent.script", "event app-displayed N a\npause 700\nevent app-displayed N b\n");
    ChildProcess listener = record({"--count", "2"});
    EXPECT_EQ(replay(script), 0u);
    EXPECT_EQ(listener.finish().status, 0u);
    const std::string text = data.read("trace.script");
    const std::string start =
        "# Recorded by bridgectl events --record.\nevent app-displayed \"N\" \"a\"\npause ";
    ASSERT_EQ(text.rfind(start, 0), 0u) << text;
    EXPECT_GE(std::stoi(text.substr(start.size())), 500);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(replay(file()), 3u) << "nobody listens";
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
}

TEST_F(BridgectlRecordTest, OnlyShownEventsAreRecorded) {
    ChildProcess listener = record({"--count", "1", "--filter", "app-uninstalled"});
    ASSERT_TRUE(RawPipe(connectWhenFree(kServer))
                    .write(appDisplayedPacket("N", "p") + appUninstalledPacket("N", "q")));
    EXPECT_EQ(listener.finish().status, 0u);
    EXPECT_EQ(data.read("trace.script"),
              "# Recorded by bridgectl events --record.\nevent app-uninstalled \"N\" \"q\"\n");
}

TEST_F(BridgectlRecordTest, AFileThatCannotBeWrittenIsAnError) {
    data.makeFolder("trace.script");
    const ChildResult result =
        run({"--client", "LogCollector", "events", "--record", file(), "--count", "1"});
    EXPECT_EQ(result.status, 13u);
    EXPECT_EQ(result.err, "bridgectl: cannot write " + file() + ": 13 XERR_ACCES\n");
}

TEST_F(BridgectlRecordTest, AnInvalidScriptSendsNothing) {
    EXPECT_EQ(replay(data / "nowhere"), 2u);
    EXPECT_EQ(replay(data.write("bad.script", "event app-displayed N a\nnonsense\n")), 2u);
    EXPECT_NE(data.read("standins.txt").find("no such script: "), std::string::npos);
    EXPECT_NE(data.read("standins.txt").find("script not understood: nonsense"), std::string::npos);
}
