// Peers that leave at each moment of an event and of a request.
#include "ServerFixture.h"
#include "ipc/IpcConnection.h"
#include "plr/client/PlrEnc.h"
#include "support/EventPackets.h"
#include "support/Proof.h"
#include "support/RawServer.h"
#include "support/WaitUntil.h"
#include "support/growth.h"
#include "xpl/Xlog.h"

namespace {

std::int32_t printNothing(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                          const char*, ...) {
    return 0;
}

// Without a log, whose lines would grow the heap.
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

    // Plays each moment in many rounds, expects no growth, and returns the number of rounds.
    static int inRounds(const std::function<void(std::size_t moment)>& play, std::size_t moments) {
        const auto all = [&] {
            for (std::size_t moment = 0; moment < moments && !HasFailure(); ++moment) play(moment);
        };
        int played = 0;
        const auto batch = [&](int rounds) {
            for (int i = 0; i < rounds; ++i) all();
            played += rounds;
            EXPECT_TRUE(waitForRecords(0));
        };
        batch(proofSize(20, 200));
        const int rounds = proofSize(200, 1000) / GROWTH_BATCHES;
        expectNoGrowth(rounds, 32, [&] { batch(rounds); });
        return played;
    }
};

// The complete packets of the clients. They are counted but not kept, so only the library's memory
// adds to the heap.
enum Sent : std::size_t {
    BEFORE_ACCEPT,
    EVENT,
    EVENT_AND_A_PIECE,
    ASKING,
    ASKING_FIRST,
    EVENT_AFTER,
    HOLDING,
    LAST,
    KINDS
};

std::string eventOf(Sent kind) {
    return appDisplayedPacket("Nougat64", "com.example." + std::to_string(kind));
}

const std::array<std::string, KINDS>& packets() {
    static const std::array<std::string, KINDS> all{
        eventOf(BEFORE_ACCEPT),
        eventOf(EVENT),
        eventOf(EVENT_AND_A_PIECE),
        packetOf(3003, "", 100'000),
        packetOf(3003, bytesOf(std::uint32_t{ASKING_FIRST}), 100'000),
        eventOf(EVENT_AFTER),
        eventOf(HOLDING),
        eventOf(LAST)};
    return all;
}

std::array<std::atomic<int>, KINDS> arrived;
std::atomic<int> unknown;
std::atomic<int> released;  // how many of the packets that hold the server's thread

// Blocks the server's thread at one kind of packet until the test releases it.
bool countKinds(QLocalSocket*, const std::uint8_t* packet, std::int32_t length, void*,
                std::int32_t) {
    const std::string_view bytes(reinterpret_cast<const char*>(packet),
                                 static_cast<std::size_t>(length));
    const auto kind = static_cast<std::size_t>(
        std::find(packets().begin(), packets().end(), bytes) - packets().begin());
    const int number = ++(kind < KINDS ? arrived[kind] : unknown);
    while (kind == HOLDING && released < number) sleepMs(1);
    return true;
}

bool waitForKind(Sent kind, int wanted) {
    return waitUntil([=] { return arrived[kind] >= wanted; });
}

}  // namespace

TEST_F(IpcPeerDeathTest, ClientsThatDieAtEachMomentOfAnEvent) {
    const auto& whole = packets();
    const std::string& event = whole[EVENT];
    const Lines said{"",
                     event.substr(0, 1),
                     event.substr(0, 11),
                     event.substr(0, 12),
                     event.substr(0, event.size() - 1),
                     event,
                     whole[EVENT_AND_A_PIECE] + event.substr(0, 5),
                     whole[ASKING],
                     whole[ASKING_FIRST] + whole[EVENT_AFTER]};
    for (std::atomic<int>& count : arrived) count = 0;
    unknown = 0;
    released = 0;
    start(countKinds);

    int holds = 0;
    const auto beforeAccept = [&](std::string_view bytes) {
        RawPipe holding(connect());
        ASSERT_TRUE(holding.write(whole[HOLDING]));
        ASSERT_TRUE(waitForKind(HOLDING, ++holds));
        std::atomic<bool> came{false};
        std::atomic<bool> left{false};
        std::thread client([&] {
            RawPipe leaving(connect());
            came = true;
            if (!bytes.empty()) EXPECT_TRUE(leaving.write(bytes));
            leaving.close();
            left = true;
        });
        while (!came) sleepMs(1);
        for (int i = 0; i < 5 && !left; ++i)
            sleepMs(1);  // on Windows it can leave only after it is accepted
        released = holds;
        client.join();
    };
    const int rounds = inRounds(
        [&](std::size_t moment) {
            if (moment < said.size()) {
                RawPipe pipe(connect());
                if (!said[moment].empty()) ASSERT_TRUE(pipe.write(said[moment]));
            } else {
                beforeAccept(moment == said.size() ? "" : whole[BEFORE_ACCEPT]);
            }
        },
        said.size() + 2);
    released = std::numeric_limits<int>::max();  // even after a failure

    for (std::size_t kind = 0; kind < HOLDING; ++kind) {
        EXPECT_TRUE(waitForKind(static_cast<Sent>(kind), rounds)) << kind;
    }
    RawPipe good(connect());
    ASSERT_TRUE(good.write(whole[LAST]));
    EXPECT_TRUE(waitForKind(LAST, 1));
    stop();
    for (std::size_t kind = 0; kind < HOLDING; ++kind) EXPECT_EQ(arrived[kind], rounds) << kind;
    EXPECT_EQ(arrived[HOLDING], 2 * rounds);
    EXPECT_EQ(arrived[LAST], 1);
    EXPECT_EQ(unknown, 0);
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
    const auto ask = [](const std::string& server) {
        IpcClient client;
        EXPECT_EQ(ipcClientInit(client, server), 0);
        return plrBringToFrontRpc(client);
    };
    std::array<int, kMoments + 1> answered{};
    const int rounds = inRounds(
        [&](std::size_t moment) {
            now = moment;
            std::uint64_t answer = 0;
            if (moment < kMoments) {
                answer = ask(name);
            } else {
                const LeavingServer leaving(name + "_leaving");
                answer = ask(name + "_leaving");
                EXPECT_TRUE(leaving.met());
            }
            answered[moment] += answer == 1;
        },
        kMoments + 1);
    const std::array<int, kMoments + 1> expected{0, 0, 0, 0, rounds, 0};
    EXPECT_EQ(answered, expected);
    EXPECT_EQ(server.served(), rounds * static_cast<int>(kMoments));
}
