#include "PlainHost.h"
#include "support/EventPackets.h"
#include "support/LogLines.h"
#include "support/Proof.h"
#include "support/RawServer.h"
#include "support/WindowsForTests.h"
#include "support/growth.h"

namespace {

class ShutdownTest : public PlainHostTest {
 protected:
    // A server of the product that writes down who was asked, in order.
    RawServer::Serve recorder(const std::string& who) {
        return [this, who](RawPipe& pipe) {
            const std::string bytes = pipe.readAll();
            const std::lock_guard<std::mutex> guard(lock);
            asked.push_back(who + ":" + hex(bytes));
        };
    }

    // A request is in the pipe when the host has ended, and may not have been read yet.
    void waitForAsked(std::size_t count) {
        for (int i = 0; i < 2000; ++i) {
            {
                const std::lock_guard<std::mutex> guard(lock);
                if (asked.size() >= count) return;
            }
            ::Sleep(5);
        }
    }

    static std::string hex(const std::string& bytes) {
        static const char* const digits = "0123456789ABCDEF";
        std::string text;
        for (const char c : bytes) {
            const auto byte = static_cast<unsigned char>(c);
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
        return text;
    }

    // Each server writes down for itself: the order among them is not theirs to tell.
    static Lines sorted(Lines lines) {
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    static std::string unique(const std::string& name) {
        return name + std::to_string(::GetCurrentProcessId());
    }

    Lines afterStart() const {
        Lines lines;
        for (const std::string& line : log()) {
            if (line.find("bridgeApiInit") == std::string::npos &&
                line.find("onfiguration") == std::string::npos && !logged::isOfSlowSend(line)) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    std::mutex lock;
    Lines asked;
};

constexpr const char* kPlayerFalse = "D0070000100000000000000000000000";
constexpr const char* kPlayerTrue = "D0070000100000000000000001000000";
constexpr const char* kManager = "A00F00000C00000000000000";

}  // namespace

TEST_F(ShutdownTest, OnePlayerIsAskedWithTheFlag) {
    writeConf("");
    const std::string player = unique("Nougat64_");
    {
        RawServer server("vtr_plr_" + player + "_nvo", recorder("player"));
        EXPECT_EQ(
            output({"init", "Helper", "plrshutdown", player, "1", "plrshutdown", player, "0"}),
            (Lines{"init 0", "plrshutdown 0", "plrshutdown 0"}));
        waitForAsked(2);
    }
    EXPECT_EQ(asked,
              (Lines{std::string("player:") + kPlayerTrue, std::string("player:") + kPlayerFalse}));
    EXPECT_EQ(afterStart(), Lines{});
}

TEST_F(ShutdownTest, APlayerThatIsNotRunningIsAnErrorLineAndZero) {
    writeConf("");
    EXPECT_EQ(output({"init", "Helper", "plrshutdown", "nobody", "0"}),
              (Lines{"init 0", "plrshutdown 0"}));
    EXPECT_EQ(afterStart(),
              Lines{logged::byHelper(logged::requestNotSent("PLR", "plrShutdownRpc", "2000"))});
}

TEST_F(ShutdownTest, APlayerThatIsMissingDoesNotStopTheOthers) {
    const std::string a = unique("Nougat64_1");
    const std::string b = unique("Nougat64_2");
    const std::string c = unique("Nougat64_3");
    std::string content;
    for (const std::string& name : {c, a, b}) {
        content += "vtr.instance." + name + ".dpi=\"240\"\n";
    }
    writeConf(content);
    {
        RawServer manager("vtr_mim_nvo", recorder("manager"));
        RawServer first("vtr_plr_" + a + "_nvo", recorder("a"));
        RawServer third("vtr_plr_" + c + "_nvo", recorder("c"));
        EXPECT_EQ(output({"init", "Helper", "shutdown"}), Lines{"init 0"});
        waitForAsked(3);
    }
    EXPECT_EQ(sorted(asked),
              (Lines{std::string("a:") + kPlayerFalse, std::string("c:") + kPlayerFalse,
                     std::string("manager:") + kManager}));
    EXPECT_EQ(afterStart(),
              Lines{logged::byHelper(logged::requestNotSent("PLR", "plrShutdownRpc", "2000"))})
        << "the second is not running";
}

TEST_F(ShutdownTest, ThreeRunningPlayersAreAllAsked) {
    const Lines players{unique("Nougat64_4"), unique("Nougat64_5"), unique("Nougat64_6")};
    std::string content;
    for (const std::string& name : players) content += "vtr.instance." + name + ".dpi=\"240\"\n";
    writeConf(content);
    {
        RawServer manager("vtr_mim_nvo", recorder("manager"));
        RawServer first("vtr_plr_" + players[0] + "_nvo", recorder("4"));
        RawServer second("vtr_plr_" + players[1] + "_nvo", recorder("5"));
        RawServer third("vtr_plr_" + players[2] + "_nvo", recorder("6"));
        EXPECT_EQ(output({"init", "Helper", "shutdown"}), Lines{"init 0"});
        waitForAsked(4);
    }
    EXPECT_EQ(sorted(asked),
              (Lines{std::string("4:") + kPlayerFalse, std::string("5:") + kPlayerFalse,
                     std::string("6:") + kPlayerFalse, std::string("manager:") + kManager}));
    EXPECT_EQ(afterStart(), Lines{});
}

TEST_F(ShutdownTest, WithoutInstancesOnlyTheManagerIsAsked) {
    writeConf("");
    {
        RawServer manager("vtr_mim_nvo", recorder("manager"));
        EXPECT_EQ(output({"init", "Helper", "shutdown"}), Lines{"init 0"});
        waitForAsked(1);
    }
    EXPECT_EQ(asked, Lines{std::string("manager:") + kManager});
}

TEST_F(ShutdownTest, WithoutAManagerThePlayersAreStillAsked) {
    const std::string a = unique("Nougat64_1");
    writeConf("vtr.instance." + a + ".dpi=\"240\"\n");
    {
        RawServer first("vtr_plr_" + a + "_nvo", recorder("a"));
        EXPECT_EQ(output({"init", "Helper", "shutdown"}), Lines{"init 0"});
        waitForAsked(1);
    }
    EXPECT_EQ(asked, Lines{std::string("a:") + kPlayerFalse});
    EXPECT_EQ(afterStart(),
              Lines{logged::byHelper(logged::requestNotSent("MIM", "mimShutdownRpc", "4000"))});
}

TEST_F(ShutdownTest, ManyRequestsOfAHostWithoutQtArriveAndLeaveNothingBehind) {
    writeConf("");
    const std::string player = unique("Nougat64_9");
    const int count = proofSize(10'000, 100'000);
    const int toNobody = 2000;
    const int withWarmUp = count + 500;
    std::atomic<int> right{0};
    const std::string request = packetOf(2000, bytesOf(0u));
    RawServer server("vtr_plr_" + player + "_nvo",
                     [&](RawPipe& pipe) { right += pipe.readAll() == request; });
    const Lines lines = output({"init", "Helper", "shutdownmany", player, std::to_string(count),
                                "shutdownmany", "nobody", std::to_string(toNobody)});
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[1], "failed 0");
    EXPECT_LT(bytesOfABatch("requests", lines[2]), count / GROWTH_BATCHES);
    EXPECT_EQ(lines[3], "failed 0");
    EXPECT_LT(bytesOfABatch("requests", lines[4]), toNobody / GROWTH_BATCHES);
    for (int i = 0; i < 2000 && server.served() < withWarmUp; ++i) ::Sleep(5);
    EXPECT_EQ(server.served(), withWarmUp);
    EXPECT_EQ(right, withWarmUp);
}
