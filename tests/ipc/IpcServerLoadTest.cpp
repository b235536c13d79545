// The server under load: nothing is lost, nothing is out of order, and everything is given back.
#include <QLocalSocket>
#include <algorithm>
#include <atomic>
#include <cstring>
#include <iterator>
#include <thread>

#include "ServerFixture.h"
#include "support/EventPackets.h"
#include "support/Platform.h"
#include "support/Proof.h"
#include "support/RawServer.h"
#include "support/process_figures.h"

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
        while (counted.total < wanted && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return counted.total == wanted;
    }

    // Sends `count` packets over one connection, in writes of many.
    void stream(std::uint32_t client, std::uint32_t count) const {
        RawPipe pipe(connect());
        std::string piece;
        for (std::uint32_t i = 0; i < count; ++i) {
            piece += numbered(client, i);
            if (piece.size() > 32'000 || i + 1 == count) {
                if (!pipe.write(piece)) return;
                piece.clear();
            }
        }
    }

    // Waits for a figure that falls back as connections are cleaned up.
    template <typename Figure>
    static auto settled(Figure figure, decltype(figure()) limit) {
        for (int i = 0; i < 1000 && figure() > limit; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return figure();
    }
};

// What the heaps of a process move by, whatever the test does. Less than two bytes for each of ten
// thousand connections.
constexpr long long kHeapMoves = 16'384;

}  // namespace

TEST_F(IpcServerLoadTest, AMillionPacketsOnOneConnectionArriveInOrder) {
    const auto count = static_cast<std::uint32_t>(proofSize(1'000'000, 10'000'000));
    start(countInOrder);
    stream(0, 1000);
    ASSERT_TRUE(waitForTotal(1000));
    counted.next[0] = 0;
    const long handles = openHandles() + HANDLES_OF_THE_SYSTEM;
    const long long memory = heapBytes();
    stream(0, count);
    EXPECT_TRUE(waitForTotal(1000 + count));
    EXPECT_EQ(counted.outOfOrder, 0u);
    EXPECT_LE(settled(openHandles, handles), handles);
    EXPECT_LE(settled(heapBytes, memory + kHeapMoves), memory + kHeapMoves);
}

TEST_F(IpcServerLoadTest, SixtyFourConnectionsKeepTheirOwnOrder) {
    start(countInOrder);
    const auto all = [this](std::uint32_t count) {
        std::vector<std::thread> clients;
        for (std::uint32_t i = 0; i < kMaxClients; ++i) {
            clients.emplace_back([this, i, count] { stream(i, count); });
        }
        for (std::thread& client : clients) client.join();
    };
    all(1);
    ASSERT_TRUE(waitForTotal(kMaxClients));
    std::fill(std::begin(counted.next), std::end(counted.next), 0);
    const long handles = openHandles() + HANDLES_OF_THE_SYSTEM;
    const long long memory = heapBytes();
    all(10'000);
    EXPECT_TRUE(waitForTotal(kMaxClients * 10'001));
    EXPECT_EQ(counted.outOfOrder, 0u);
    EXPECT_LE(settled(openHandles, handles), handles);
    EXPECT_LE(settled(heapBytes, memory + kHeapMoves), memory + kHeapMoves);
}

TEST_F(IpcServerLoadTest, TenThousandClientsThatWriteAndLeaveAreAllHeard) {
    start(countInOrder);
    const auto cycles = [this](std::uint32_t client, std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) {
            RawPipe pipe(connect());
            if (!pipe.write(numbered(client, i))) return;
        }
    };
    cycles(60, 100);
    ASSERT_TRUE(waitForTotal(100));
    const long handles = openHandles() + HANDLES_OF_THE_SYSTEM;
    const long long memory = heapBytes();
    std::vector<std::thread> clients;
    for (std::uint32_t i = 0; i < 4; ++i) clients.emplace_back([&, i] { cycles(i, 2500); });
    for (std::thread& client : clients) client.join();
    EXPECT_TRUE(waitForTotal(10'100)) << counted.total;
    EXPECT_LT(counted.mostSockets, 500) << "those that have left make room as others come";
    EXPECT_TRUE(waitForRecords(0)) << "while the server goes on";
    EXPECT_LE(settled(openHandles, handles), handles);
    EXPECT_LE(settled(heapBytes, memory + kHeapMoves), memory + kHeapMoves);
}

TEST_F(IpcServerLoadTest, TwoHundredClientsAtOnceAreAllServed) {
    start();
    constexpr std::size_t kClients = 200;
    std::atomic<std::size_t> served{0};
    std::vector<std::thread> clients;
    clients.reserve(kClients);
    for (std::size_t i = 0; i < kClients; ++i) {
        clients.emplace_back([this, &served] {
            RawPipe client(connect());
            if (client.write(packetOf(1, "abc", 5)) && client.read(5) == std::string(5, '\0')) {
                ++served;
            }
        });
    }
    for (std::thread& client : clients) client.join();
    EXPECT_EQ(served, kClients);
}

TEST_F(IpcServerLoadTest, ClientsThatLeaveAtOnceDoNotMakeItDeaf) {
    start(countInOrder);
    for (int i = 0; i < 2000; ++i) {
        const RawPipe leaving(connect());
    }
    stream(0, 100);
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
