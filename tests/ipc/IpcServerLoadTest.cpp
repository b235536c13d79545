// The server under load: nothing is lost or out of order, and everything is released.
#include <QLocalSocket>

#include "ServerFixture.h"
#include "support/EventPackets.h"
#include "support/Platform.h"
#include "support/Proof.h"
#include "support/RawServer.h"
#include "support/growth.h"

namespace {

// A packet's opcode is its client, and its payload the number that the client gave it.
constexpr std::size_t kMaxClients = 64;

struct Counted {
    std::atomic<std::uint64_t> total{0};
    std::atomic<std::uint64_t> outOfOrder{0};
    std::atomic<int> mostSockets{0};
    std::uint32_t next[kMaxClients] = {};  // used by the server's thread only
};
Counted counted;

bool countInOrder(QLocalSocket* socket, const std::uint8_t* packet, std::int32_t length, void*,
                  std::int32_t) {
    std::uint32_t client = 0;
    std::uint32_t number = 0;
    std::memcpy(&client, packet, sizeof client);
    std::memcpy(&number, packet + 12, sizeof number);
    const bool expected = length == 16 && client < kMaxClients && counted.next[client] == number;
    if (expected) {
        ++counted.next[client];
    } else {
        ++counted.outOfOrder;
    }
    counted.mostSockets = std::max<int>(counted.mostSockets, socket->parent()->children().size());
    ++counted.total;
    return true;
}

std::string numbered(std::uint32_t client, std::uint32_t number) {
    return packetOf(client, bytesOf(number));
}

class IpcServerLoadTest : public ServerFixture {
 protected:
    IpcServerLoadTest() {
        counted.total = 0;
        counted.outOfOrder = 0;
        counted.mostSockets = 0;
        std::memset(counted.next, 0, sizeof counted.next);
    }

    static bool waitForTotal(std::uint64_t wanted) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (counted.total < wanted && std::chrono::steady_clock::now() < end) sleepMs(2);
        return counted.total == wanted;
    }

    // Runs play(i) on this many threads.
    template <typename Play>
    static void onThreads(std::size_t count, Play play) {
        std::vector<std::thread> threads;
        for (std::uint32_t i = 0; i < count; ++i) threads.emplace_back(play, i);
        for (std::thread& thread : threads) thread.join();
    }

    // Sends the packets with these numbers over one connection, with many packets per write.
    static void send(RawPipe& pipe, std::uint32_t client, std::uint32_t from, std::uint32_t to) {
        std::string piece;
        for (std::uint32_t i = from; i < to; ++i) {
            piece += numbered(client, i);
            if (piece.size() > 32'000 || i + 1 == to) {
                if (!pipe.write(piece)) return;
                piece.clear();
            }
        }
    }

    void stream(std::uint32_t client, std::uint32_t from, std::uint32_t to) const {
        RawPipe pipe(connect());
        send(pipe, client, from, to);
    }
};

}  // namespace

TEST_F(IpcServerLoadTest, AMillionPacketsOnOneConnectionArriveInOrder) {
    const int all = proofSize(1'000'000, 10'000'000);
    const auto batch = static_cast<std::uint32_t>(all / GROWTH_BATCHES);
    start(countInOrder);
    RawPipe pipe(connect());
    std::uint32_t sent = 0;
    const auto sendMore = [&](std::uint32_t count) {
        send(pipe, 0, sent, sent + count);
        sent += count;
        ASSERT_TRUE(waitForTotal(sent));
    };
    sendMore(1000);
    expectNoGrowth(all / GROWTH_BATCHES, 0.1, [&] { sendMore(batch); });
    EXPECT_EQ(counted.outOfOrder, 0u);
}

TEST_F(IpcServerLoadTest, SixtyFourConnectionsKeepTheirOwnOrder) {
    start(countInOrder);
    std::uint32_t sent = 0;
    const auto sendMore = [&](std::uint32_t count) {
        onThreads(kMaxClients, [&](std::uint32_t i) { stream(i, sent, sent + count); });
        sent += count;
        ASSERT_TRUE(waitForTotal(kMaxClients * std::uint64_t{sent}));
        ASSERT_TRUE(waitForRecords(0));
    };
    for (int i = 0; i < 10; ++i) sendMore(1);
    constexpr int kTimes = 5;
    expectNoGrowth(kTimes * kMaxClients, 32, [&] {
        for (int i = 0; i < kTimes; ++i) sendMore(10'000 / GROWTH_BATCHES / kTimes);
    });
    EXPECT_EQ(counted.outOfOrder, 0u);
}

TEST_F(IpcServerLoadTest, TenThousandClientsThatWriteAndLeaveAreAllHeard) {
    start(countInOrder);
    constexpr std::uint32_t kThreads = 4;
    std::uint32_t sent = 0;
    const auto sendMore = [&](std::uint32_t count) {
        onThreads(kThreads, [&](std::uint32_t client) {
            for (std::uint32_t i = sent; i < sent + count; ++i) {
                RawPipe pipe(connect());
                if (!pipe.write(numbered(client, i))) return;
            }
        });
        sent += count;
        ASSERT_TRUE(waitForTotal(kThreads * sent)) << counted.total;
        ASSERT_TRUE(waitForRecords(0)) << "while the server goes on";
    };
    sendMore(25);
    constexpr int kBatch = 2500 / GROWTH_BATCHES;
    expectNoGrowth(kBatch * kThreads, 16, [&] { sendMore(kBatch); });
    EXPECT_LT(counted.mostSockets, 500) << "those that have left make room as others come";
}

TEST_F(IpcServerLoadTest, TwoHundredClientsAtOnceAreAllServed) {
    start();
    constexpr std::size_t kClients = 200;
    std::atomic<std::size_t> served{0};
    onThreads(kClients, [this, &served](std::uint32_t) {
        RawPipe client(connect());
        if (client.write(packetOf(1, "abc", 5)) && client.read(5) == std::string(5, '\0')) ++served;
    });
    EXPECT_EQ(served, kClients);
}

TEST_F(IpcServerLoadTest, ClientsThatLeaveAtOnceDoNotMakeItDeaf) {
    start(countInOrder);
    for (int i = 0; i < 2000; ++i) {
        const RawPipe leaving(connect());
    }
    stream(0, 0, 100);
    EXPECT_TRUE(waitForTotal(100));
    EXPECT_EQ(counted.outOfOrder, 0u);
}

TEST_F(IpcServerLoadTest, ClientsThatLeaveAtOnceDoNotKeepItFromStarting) {
    std::atomic<bool> stopKnocking{false};
    std::vector<std::thread> clients;
    for (int i = 0; i < 4; ++i) {
        clients.emplace_back([&] {
            while (!stopKnocking) {
                if (void* const pipe = connectRaw(name)) const RawPipe leaving(pipe);
            }
        });
    }
    for (std::uint32_t i = 0; i < 30; ++i) {
        start(countInOrder);
        RawPipe client(connect());
        ASSERT_TRUE(client.write(numbered(0, i)));
        EXPECT_TRUE(waitForTotal(i + 1));
        stop();
    }
    stopKnocking = true;
    for (std::thread& client : clients) client.join();
}
