#include "PlainHost.h"
#include "support/EventPackets.h"
#include "support/LogLines.h"
#include "support/Proof.h"
#include "support/RawServer.h"
#include "support/WaitUntil.h"
#include "support/growth.h"

namespace {

// An instance's name that no other test uses.
std::string unique(const std::string& name) { return name + std::to_string(ownProcessId()); }

class ShutdownTest : public PlainHostTest {
 protected:
    ShutdownTest() { writeConf(""); }

    // Running programs of the product: players by their instances, and "manager".
    class Running {
     public:
        Running(ShutdownTest& test, const Lines& names) {
            for (const std::string& name : names) {
                const bool isManager = name == "manager";
                servers_.push_back(std::make_unique<RawServer>(
                    isManager ? "vtr_mim_nvo" : "vtr_plr_" + name + "_nvo",
                    [&test, name](RawPipe& pipe) { test.record(name, pipe.readAll()); }));
            }
        }

     private:
        std::vector<std::unique_ptr<RawServer>> servers_;
    };

    void writeInstances(const Lines& names) const {
        std::string content;
        for (const std::string& name : names) {
            content += "vtr.instance." + name + ".dpi=\"240\"\n";
        }
        writeConf(content);
    }

    void record(const std::string& name, const std::string& bytes) {
        const std::lock_guard<std::mutex> guard(lock);
        asked.emplace_back(name, bytes);
    }

    using Requests = std::vector<std::pair<std::string, std::string>>;

    // Waits for these requests, since some may still be in a pipe. The order among servers is not
    // checked: each records its own.
    void expectAsked(Requests expected) {
        EXPECT_TRUE(waitUntil([&] {
            const std::lock_guard<std::mutex> guard(lock);
            return asked.size() >= expected.size();
        }));
        const auto byName = [](const auto& a, const auto& b) { return a.first < b.first; };
        std::stable_sort(expected.begin(), expected.end(), byName);
        const std::lock_guard<std::mutex> guard(lock);
        std::stable_sort(asked.begin(), asked.end(), byName);
        EXPECT_EQ(asked, expected);
    }

    // The log after the initialisation, without the warnings of a slow machine.
    Lines complaints() const {
        Lines lines = logAfterInit();
        lines.erase(std::remove_if(lines.begin(), lines.end(), logged::isOfSlowSend), lines.end());
        return lines;
    }

    std::mutex lock;
    Requests asked;
};

// The requests to players, by their flag, and to the manager.
const std::string kPlayerFalse = packetOf(2000, bytesOf(0u));
const std::string kPlayerTrue = packetOf(2000, bytesOf(1u));
const std::string kManager = packetOf(4000, "");

const std::string kPlayerNotAsked =
    logged::byHelper(logged::requestNotSent("PLR", "plrShutdownRpc", "2000"));
const std::string kManagerNotAsked =
    logged::byHelper(logged::requestNotSent("MIM", "mimShutdownRpc", "4000"));

}  // namespace

TEST_F(ShutdownTest, OnePlayerIsAskedWithTheFlag) {
    const std::string player = unique("Nougat64_");
    const Running running(*this, {player});
    EXPECT_EQ(asHelper({"plrshutdown", player, "1", "plrshutdown", player, "0"}),
              (Lines{"plrshutdown 0", "plrshutdown 0"}));
    expectAsked({{player, kPlayerTrue}, {player, kPlayerFalse}});
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(ShutdownTest, APlayerThatIsNotRunningIsAnErrorLineAndZero) {
    EXPECT_EQ(asHelper("plrshutdown nobody 0"), Lines{"plrshutdown 0"});
    EXPECT_EQ(complaints(), Lines{kPlayerNotAsked});
}

TEST_F(ShutdownTest, APlayerThatIsMissingDoesNotStopTheOthers) {
    const std::string a = unique("Nougat64_1");
    const std::string missing = unique("Nougat64_2");
    const std::string c = unique("Nougat64_3");
    writeInstances({c, a, missing});
    const Running running(*this, {"manager", a, c});
    EXPECT_EQ(asHelper("shutdown"), Lines{});
    expectAsked({{a, kPlayerFalse}, {c, kPlayerFalse}, {"manager", kManager}});
    EXPECT_EQ(complaints(), Lines{kPlayerNotAsked});
}

TEST_F(ShutdownTest, ThreeRunningPlayersAreAllAsked) {
    const Lines players{unique("Nougat64_4"), unique("Nougat64_5"), unique("Nougat64_6")};
    writeInstances(players);
    const Running running(*this, with({"manager"}, players));
    EXPECT_EQ(asHelper("shutdown"), Lines{});
    expectAsked({{players[0], kPlayerFalse},
                 {players[1], kPlayerFalse},
                 {players[2], kPlayerFalse},
                 {"manager", kManager}});
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(ShutdownTest, WithoutInstancesOnlyTheManagerIsAsked) {
    const Running running(*this, {"manager"});
    EXPECT_EQ(asHelper("shutdown"), Lines{});
    expectAsked({{"manager", kManager}});
}

TEST_F(ShutdownTest, WithoutAManagerThePlayersAreStillAsked) {
    const std::string player = unique("Nougat64_1");
    writeInstances({player});
    const Running running(*this, {player});
    EXPECT_EQ(asHelper("shutdown"), Lines{});
    expectAsked({{player, kPlayerFalse}});
    EXPECT_EQ(complaints(), Lines{kManagerNotAsked});
}

TEST_F(ShutdownTest, ManyRequestsOfAHostWithoutQtArriveAndLeaveNothingBehind) {
    const std::string player = unique("Nougat64_9");
    const int count = proofSize(10'000, 100'000);
    const int toNobody = 2000;
    const int withWarmUp = count + 500;
    std::atomic<int> right{0};
    const RawServer server("vtr_plr_" + player + "_nvo",
                           [&](RawPipe& pipe) { right += pipe.readAll() == kPlayerFalse; });
    const Lines lines = asHelper({"shutdownmany", player, std::to_string(count), "shutdownmany",
                                  "nobody", std::to_string(toNobody)});
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "failed 0");
    EXPECT_LT(bytesOfABatch("requests", lines[1]), count / GROWTH_BATCHES);
    EXPECT_EQ(lines[2], "failed 0");
    EXPECT_LT(bytesOfABatch("requests", lines[3]), toNobody / GROWTH_BATCHES);
    EXPECT_TRUE(waitUntil([&] { return server.served() >= withWarmUp; }));
    EXPECT_EQ(server.served(), withWarmUp);
    EXPECT_EQ(right, withWarmUp);
}
