// The server thread in a process without an application object, and raw pipes as its clients.
#include "ServerFixture.h"
#include "ipc/IpcConnection.h"
#include "ipc/IpcName.h"
#include "support/EventPackets.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/MalformedPackets.h"
#include "support/RawServer.h"
#include "support/WaitUntil.h"
#include "support/process_figures.h"
#include "xpl/Xsystem.h"

namespace {

std::atomic<bool> released{true};

// Blocks the server's thread until the test releases it.
bool seeWhenReleased(QLocalSocket* socket, const std::uint8_t* packet, std::int32_t length,
                     void* reply, std::int32_t replyLength) {
    while (!released) sleepMs(1);
    return see(socket, packet, length, reply, replyLength);
}

class IpcServerTest : public ServerFixture {
 protected:
    // Before the end of the capture, since the server's thread logs.
    ~IpcServerTest() override { stop(); }

    bool waitForLine(const std::string& part) const {
        return waitUntil([&] { return countLines(part) > 0; });
    }

    // Expects a client's packet to arrive.
    void expectServed(const std::string& packet = packetOf(1, "")) const {
        RawPipe client(connect());
        ASSERT_TRUE(client.write(packet));
        ASSERT_TRUE(seen.waitFor(1));
        EXPECT_EQ(seen.packets, Lines{packet});
    }

    std::size_t countLines(const std::string& part) const {
        std::size_t found = 0;
        for (const std::string& text : log.texts(XLOG_DEBUG)) {
            if (text.find(part) != std::string::npos) ++found;
        }
        return found;
    }

    void expectEveryEndIsLogged() const {
        EXPECT_EQ(countLines("AboutToClose cleaning info"),
                  countLines(logged::connectionStep("IpcConnectionInfo", name)) *
                      static_cast<std::size_t>(closeSignals()));
    }

    LogCapture log;
};

}  // namespace

TEST_F(IpcServerTest, ItsLifeIsLogged) {
    start();
    stop();
    EXPECT_EQ(log.texts(XLOG_DEBUG),
              (Lines{"D IPC ipcServerInit: called with name = " + name,
                     logged::clientStep("IpcServerThread IpcServerThread", name),
                     logged::clientStep("IpcServerThread run", name), "D IPC ipcServerFini called",
                     logged::clientStep("IpcServerThread ~IpcServerThread", name)}));
}

TEST_F(IpcServerTest, StoppingANullThreadDoesNothing) {
    IpcServerThread* none = nullptr;
    EXPECT_EQ(ipcServerFini(&none), 0);
    EXPECT_EQ(log.texts(XLOG_DEBUG), Lines{"D IPC ipcServerFini called"});
}

TEST_F(IpcServerTest, ThePointerKeepsItsValueAfterStopping) {
    start();
    IpcServerThread* pointer = std::exchange(thread, nullptr);
    IpcServerThread* const before = pointer;
    ipcServerFini(&pointer);
    EXPECT_EQ(pointer, before);
}

TEST_F(IpcServerTest, AServerThatIsStoppedAtOnceStops) {
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(ipcServerInit(&thread, name, see), 0);
        stop();
    }
    EXPECT_FALSE(ipcNameIsServed(name));
}

TEST_F(IpcServerTest, PacketsArriveOnItsOwnThread) {
    start();
    expectServed(appDisplayedPacket("N", "p"));
    EXPECT_NE(seen.thread, xsystemThreadId());
}

TEST_F(IpcServerTest, TheConnectionsLifeIsLogged) {
    start();
    log.clear();
    expectServed();
    ASSERT_TRUE(waitForLine("AboutToClose"));
    const Lines lines = log.texts(XLOG_DEBUG);
    EXPECT_EQ(lines.at(0), logged::connectionStep("IpcConnectionInfo", name) + ", packetLen = 0");
    EXPECT_EQ(lines.at(1),
              "D IPC ipcHandleNewConnection: New connection received for server " + name);
    const std::string& gone = lines.at(lines.size() - 1 - static_cast<std::size_t>(closeSignals()));
    EXPECT_EQ(gone.find(logged::connectionStep("ipcDestroyConnection", name) + " info "), 0u)
        << gone;
    EXPECT_NE(gone.find(" bytes 0 state 0"), std::string::npos) << gone;
    EXPECT_EQ(lines.back().find("D IPC Source/ipc/IpcServer:"), 0u) << lines.back();
    EXPECT_NE(lines.back().find(" AboutToClose cleaning info "), std::string::npos);
}

TEST_F(IpcServerTest, ASecondServerOfANameLogsItsFailureAndTheFirstGoesOn) {
    start();
    log.clear();
    IpcServerThread* second = nullptr;
    ASSERT_EQ(ipcServerInit(&second, name, see), 0);
    ASSERT_TRUE(waitForLine("Failed to listen"));
    EXPECT_EQ(log.texts(XLOG_ERROR),
              Lines{logged::notListening(name, "8(QLocalServer::listen: Address in use)")});
    ipcServerFini(&second);
    expectServed();
}

TEST_F(IpcServerTest, AnImpossibleNameIsAFailedListen) {
    name.clear();
    IpcServerThread* server = nullptr;
    ASSERT_EQ(ipcServerInit(&server, name, see), 0);
    ASSERT_TRUE(waitForLine("Failed to listen"));
    ipcServerFini(&server);
    EXPECT_EQ(log.texts(XLOG_ERROR),
              Lines{logged::notListening("", "2(QLocalServer::listen: Name error)")});
}

TEST_F(IpcServerTest, ANameIsFreeAgainAfterItsServer) {
    start();
    stop();
    start();
    expectServed();
    EXPECT_EQ(log.texts(XLOG_ERROR), Lines{});
}

TEST_F(IpcServerTest, AReplyArrivesOverThePipeAndNothingElse) {
    start();
    RawPipe client(connect());
    ASSERT_TRUE(client.write(packetOf(1, "abc", 8)));
    EXPECT_EQ(client.read(8), std::string(8, '\0'));
    ASSERT_TRUE(client.write(packetOf(2, "", 3)));
    EXPECT_EQ(client.read(3), std::string(3, '\0'));
}

TEST_F(IpcServerTest, APacketWhoseBodyComesInALaterDeliveryGetsNoReply) {
    start();
    RawPipe client(connect());
    const std::string packet = packetOf(1, "abcd", 8);
    ASSERT_TRUE(client.write(std::string_view(packet).substr(0, 14)));
    ASSERT_TRUE(waitForLine(logged::readPart(name, "14"))) << "the first delivery is over";
    ASSERT_TRUE(client.write(packet.substr(14) + packetOf(2, "", 3)));
    EXPECT_EQ(client.read(3), std::string(3, '\0'))
        << "the second packet's, and the first had none";
    ASSERT_TRUE(seen.waitFor(2));
    log.clear();
}

TEST_F(IpcServerTest, BytesThatAClientWroteBeforeItWasAcceptedArriveAfterItHasLeft) {
    start(seeWhenReleased);
    released = false;
    const std::string first = packetOf(1, "");
    const std::string second = packetOf(2, "abc");
    RawPipe blocking(connect());
    ASSERT_TRUE(blocking.write(first));
    ASSERT_TRUE(waitForLine(logged::readWhole(name)));
    std::thread leaving([&] {
        RawPipe client(connect());
        client.write(second);
    });
    sleepMs(100);  // lets the client leave before it is accepted, if the system allows that
    released = true;
    leaving.join();
    ASSERT_TRUE(seen.waitFor(2));
    EXPECT_EQ(seen.packets, (Lines{first, second}));
}

TEST_F(IpcServerTest, AMebibyteArrivesWhole) {
    start();
    expectServed(packetOf(1, std::string(1 << 20, 'x')));
}

TEST_F(IpcServerTest, OpenConnectionsAndHalfPacketsDoNotKeepItFromStopping) {
    start();
    const std::string packet = packetOf(1, "abcd", 1 << 20);
    RawPipe idle(connect());
    RawPipe half(connect());
    RawPipe unreadReply(connect());
    ASSERT_TRUE(half.write(packet.substr(0, 13)));
    ASSERT_TRUE(unreadReply.write(packet));
    ASSERT_TRUE(seen.waitFor(1));
    ASSERT_TRUE(waitForLine(logged::readPart(name, "13")));
    stop();
    EXPECT_EQ(countLines(logged::connectionStep("IpcConnectionInfo", name)), 3u);
    expectEveryEndIsLogged();
}

TEST_F(IpcServerTest, EveryRecordIsReleasedWhateverEndsTheConnection) {
    start();
    RawPipe stays(connect());
    {
        RawPipe leaves(connect());
        ASSERT_TRUE(stays.write(packetOf(1, "")));
        ASSERT_TRUE(seen.waitFor(1));
        ASSERT_TRUE(waitForRecords(2));
    }
    EXPECT_TRUE(waitForRecords(1)) << "while the server goes on";
    stop();
    EXPECT_EQ(IpcConnectionInfo::live(), 0);
    EXPECT_EQ(countLines(logged::connectionStep("IpcConnectionInfo", name)), 2u);
    expectEveryEndIsLogged();
}

TEST_F(IpcServerTest, StartingAndStoppingGivesEveryHandleBack) {
    const auto round = [this] {
        start();
        seen.clear();
        expectServed();
        stop();
    };
    round();
    const long before = openHandles();
    for (int i = 0; i < 100; ++i) round();
    EXPECT_LE(openHandles(), before + HANDLES_OF_THE_SYSTEM);
}

TEST_F(IpcServerTest, MalformedPacketsLeaveNoRecordAndNoHandle) {
    start();
    Lines packets = malformedPackets();
    for (const std::uint32_t length : {0x7FFFFFFFu, 0x80000000u, 0x8000000Bu}) {
        packets.push_back(bytesOf(3007u) + bytesOf(length) + bytesOf(0u) + "some of it");
    }
    const auto sendAll = [&] {
        for (const std::string& packet : packets) {
            RawPipe pipe(connect());
            if (!packet.empty()) ASSERT_TRUE(pipe.write(packet));
        }
    };
    sendAll();
    ASSERT_TRUE(waitForRecords(0));
    const long handles = openHandles();
    sendAll();
    EXPECT_TRUE(waitForRecords(0));
    EXPECT_LE(openHandles(), handles + HANDLES_OF_THE_SYSTEM);
    seen.clear();
    expectServed(appDisplayedPacket("N", "p"));
}
