// Peers that go away at each moment of an event and of a request.
#include <atomic>
#include <functional>
#include <thread>

#include "ServerFixture.h"
#include "plr/PlrEnc.h"
#include "support/EventPackets.h"
#include "support/Proof.h"
#include "support/RawServer.h"
#include "support/process_figures.h"
#include "xpl/Xlog.h"

namespace {

constexpr long long kMebibyte = 1 << 20;

std::int32_t printNothing(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                          const char*, ...) {
    return 0;
}

// Without a log, whose lines would be the memory that grows.
class IpcPeerDeathTest : public ServerFixture {
 protected:
    IpcPeerDeathTest() {
        const XlogLogger quiet{[](std::int32_t, std::int32_t) { return 0; }, printNothing};
        EXPECT_EQ(xlogLibInit(&quiet, {}), 0);
    }
    ~IpcPeerDeathTest() override {
        stop();
        EXPECT_EQ(xlogLibInit(&before, {}), 0);
    }

    const XlogLogger before = xlogGetLogger();

    // Plays one round of each moment again and again; behind it, nothing is left.
    static void inRounds(const std::function<void(std::size_t moment)>& play, std::size_t moments) {
        const auto all = [&] {
            for (std::size_t moment = 0; moment < moments; ++moment) play(moment);
        };
        for (int i = 0; i < 5; ++i) all();
        const long handles = openHandles() + HANDLES_OF_THE_SYSTEM;
        const long long memory = heapBytes();
        const int rounds = proofSize(100, 1000);
        for (int i = 0; i < rounds; ++i) all();
        const auto isBack = [&] {
            return openHandles() <= handles && heapBytes() <= memory + kMebibyte;
        };
        for (int i = 0; i < 1000 && !isBack(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        EXPECT_LE(openHandles(), handles);
        EXPECT_LE(heapBytes(), memory + kMebibyte);
    }
};

}  // namespace

TEST_F(IpcPeerDeathTest, ClientsThatDieAtEachMomentOfAnEvent) {
    const std::string event = appDisplayedPacket("Nougat64", "com.example");
    const std::string asking = packetOf(3003, "", 100'000);
    const Lines said{"",
                     event.substr(0, 1),
                     event.substr(0, 11),
                     event.substr(0, 12),
                     event.substr(0, event.size() - 1),
                     event,
                     event + event.substr(0, 5),
                     asking,
                     asking + event};
    std::size_t whole = 0;
    start();
    inRounds(
        [&](std::size_t moment) {
            RawPipe pipe(connect());
            if (!said[moment].empty()) ASSERT_TRUE(pipe.write(said[moment]));
            whole += moment < 5 ? 0 : moment == 8 ? 2 : 1;
        },
        said.size());
    EXPECT_TRUE(seen.waitFor(whole));
    RawPipe good(connect());
    ASSERT_TRUE(good.write(event));
    EXPECT_TRUE(seen.waitFor(whole + 1));
    EXPECT_EQ(seen.packets.back(), event);
}

TEST_F(IpcPeerDeathTest, ServersThatDieAtEachMomentOfARequest) {
    std::atomic<std::size_t> now{0};
    constexpr std::size_t kMoments = 5;
    RawServer server(name, [&](RawPipe& pipe) {
        const std::size_t moment = now;
        if (moment >= 1) pipe.read(5);
        if (moment >= 2) pipe.read(7);
        if (moment == 3) pipe.write("half");
        if (moment == 4) pipe.write(std::string("\1\0\0\0\0\0\0\0", 8));
    });
    int answered = 0;
    int failed = 0;
    inRounds(
        [&](std::size_t moment) {
            now = moment;
            IpcClient client;
            ASSERT_EQ(ipcClientInit(client, name), 0);
            ++(plrBringToFrontRpc(client) == 1 ? answered : failed);
        },
        kMoments);
    EXPECT_GT(answered, 0);
    EXPECT_EQ(failed, answered * (static_cast<int>(kMoments) - 1));
}
