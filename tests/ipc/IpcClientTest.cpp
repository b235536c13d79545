#include "ipc/IpcClient.h"

#include <QCoreApplication>
#include <QLocalSocket>
#include <QPointer>

#include "DeafServer.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "support/WaitUntil.h"

namespace {

using Clock = std::chrono::steady_clock;

const std::string kPacket(12, 'p');

// A server that keeps the bytes of one client.
struct Recorder {
    explicit Recorder(const std::string& name)
        : server(name, [this](RawPipe& pipe) { got = pipe.readAll(); }) {}
    bool waitForClient() const {
        return waitUntil([this] { return server.served() > 0; });
    }

    std::string got;
    RawServer server;
};

class IpcClientTest : public ::testing::Test {
 protected:
    IpcClientTest() {
        static int count = 0;
        name = "vtr_test_client_" + std::to_string(ownProcessId()) + "_" + std::to_string(++count);
        ipcClientInit(client, name);
        client.waitMs = 300;
        log.clear();
    }

    int send(std::string_view bytes, bool disconnectAfter) {
        const Clock::time_point start = Clock::now();
        const int result =
            ipcSendToServer(client, bytes.data(), static_cast<int>(bytes.size()), disconnectAfter);
        seconds = std::chrono::duration<double>(Clock::now() - start).count();
        return result;
    }

    int read() {
        const Clock::time_point start = Clock::now();
        const int result = ipcReadFromServer(client, reply, 8);
        seconds = std::chrono::duration<double>(Clock::now() - start).count();
        return result;
    }

    std::string failedWrite(int size) const {
        return "W IPC ipcSendToServer: ERROR: writing data of size " + std::to_string(size) +
               " to server " + name + " failed";
    }

    // Reads the reply of a server that sends none. Returns the seconds until the read failed.
    double waitForReply() {
        const DeafServer server(name, kPacket.size(), /*bufferSize=*/65536);
        EXPECT_EQ(send(kPacket, false), 0);
        EXPECT_EQ(read(), -1);
        EXPECT_EQ(client.socket->state(), QLocalSocket::ConnectedState);
        return seconds;
    }

    // Warnings and errors except the slow-call warning, which depends on the machine's speed.
    Lines complaints() const {
        Lines all;
        for (const std::string& line : log.texts(XLOG_WARNING)) {
            if (!logged::isOfSlowSend(line)) all.push_back(line);
        }
        return all;
    }

    bool warnedOfSlowness() const { return complaints().size() < log.texts(XLOG_WARNING).size(); }

    std::string name;
    LogCapture log;
    IpcClient client;
    char reply[9] = {};
    double seconds = 0;  // of the last send or read
};

TEST_F(IpcClientTest, ASizeBelowOneIsRefusedBeforeAnyConnection) {
    EXPECT_EQ(ipcSendToServer(client, "x", 0, true), -1);
    EXPECT_EQ(ipcSendToServer(client, "x", -5, true), -1);
    EXPECT_EQ(log.texts(XLOG_DEBUG),
              (Lines{"D IPC ipcSendToServer called with size 0",
                     "W IPC ipcSendToServer called with invalid data size 0 for server " + name,
                     "D IPC ipcSendToServer called with size -5",
                     "W IPC ipcSendToServer called with invalid data size -5 for server " + name}));
}

TEST_F(IpcClientTest, ASendLogsEveryStep) {
    const Recorder server(name);
    EXPECT_EQ(send(kPacket, true), 0);
    Lines steps;
    for (const std::string& line : log.texts(XLOG_DEBUG)) {
        if (!logged::isOfSlowSend(line)) steps.push_back(line);
    }
    ASSERT_GE(steps.size(), 8u);
    EXPECT_EQ(Lines(steps.begin(), steps.begin() + 6),
              (Lines{"D IPC ipcSendToServer called with size 12",
                     "D IPC ipcSendToServer: check if we are already connected to server: " + name,
                     "D IPC ipcSendToServer: connecting to server: " + name,
                     "D IPC ipcSendToServer: successfully connected to server: " + name +
                         ", send data of size 12",
                     "D IPC ipcSendToServer: writing data of size 12 to server " + name,
                     "D IPC ipcSendToServer: total data of size 12 written successfully for "
                     "server " +
                         name}));
    EXPECT_EQ(steps[6], logged::clientStep("ipcDisconnectFromServer", name));
    EXPECT_EQ(steps[7],
              "D IPC Before disconnectFromServer serverName: " + name + " toWrite: 0 state: 3");
}

TEST_F(IpcClientTest, AMissingServerFailsAtOnceWithoutAWarning) {
    EXPECT_EQ(send(kPacket, true), -1);
    EXPECT_EQ(complaints(), Lines{});
    const std::string start =
        "D IPC ipcSendToServer: Socket in unconnected state, server: " + name + ", socket error: ";
    bool found = false;
    for (const std::string& line : log.texts(XLOG_DEBUG)) found |= line.rfind(start, 0) == 0;
    EXPECT_TRUE(found);
    EXPECT_LT(seconds, 2.0);
}

TEST_F(IpcClientTest, APeerThatNeverReadsCostsTheWritesAndTheDisconnectsWait) {
    const DeafServer server(name, /*bytes=*/0, /*bufferSize=*/0);
    EXPECT_EQ(send(std::string(1 << 20, 'x'), true), -1);
    EXPECT_GT(seconds, 0.25);
    EXPECT_LT(seconds, 2.0) << "two waits of 0.3 s";
    const Lines lines = complaints();
    ASSERT_GE(lines.size(), 1u);
    EXPECT_EQ(lines[0], failedWrite(1 << 20));
    EXPECT_TRUE(warnedOfSlowness());
}

TEST_F(IpcClientTest, APeerThatClosesAtOnceLosesALargePacket) {
    RawServer server(
        name, [](RawPipe& pipe) { pipe.close(); }, /*bufferSize=*/0);
    EXPECT_EQ(send(std::string(1 << 20, 'x'), true), -1);
    EXPECT_LT(seconds, 2.0);
    // The client notices the end when it connects, writes or waits for the write.
    for (const std::string& line : complaints()) EXPECT_EQ(line, failedWrite(1 << 20));
}

TEST_F(IpcClientTest, APeerThatClosesMidPacketIsAFailedWrite) {
    RawServer server(
        name, [](RawPipe& pipe) { pipe.read(1000); }, /*bufferSize=*/0);
    EXPECT_EQ(send(std::string(1 << 20, 'x'), true), -1);
    EXPECT_EQ(complaints(), Lines{failedWrite(1 << 20)});
    EXPECT_LT(seconds, 2.0);
}

TEST_F(IpcClientTest, ALargePacketArrivesWhole) {
    const std::string large(3 << 20, 'x');
    const Recorder server(name);
    EXPECT_EQ(send(large, true), 0);
    EXPECT_TRUE(server.waitForClient());
    EXPECT_TRUE(server.got == large) << server.got.size();
}

TEST_F(IpcClientTest, ASlowSendSucceedsWithAWarning) {
    RawServer server(
        name,
        [](RawPipe& pipe) {
            sleepMs(60);
            pipe.readAll();
        },
        /*bufferSize=*/0);
    const std::string data(1'000'000, 'x');
    EXPECT_EQ(send(data, true), 0);
    const Lines all = log.texts(XLOG_WARNING);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].rfind(logged::slowSend(), 0), 0u);
    EXPECT_NE(all[0].find(" nsecs, err = 0, data size = 1000000, server = " + name),
              std::string::npos);
}

TEST_F(IpcClientTest, AClientOfAnotherServerIsDisconnectedFirst) {
    RawServer first(name, [](RawPipe& pipe) { pipe.readAll(); });
    const Recorder second(name + "b");
    ASSERT_EQ(send(kPacket, false), 0);
    client.serverName = name + "b";
    log.clear();
    EXPECT_EQ(send("other packet", true), 0);
    EXPECT_EQ(complaints(), Lines{"W IPC ipcSendToServer: disconnecting from server: " + name +
                                  ", orig server: " + name + "b"});
    EXPECT_TRUE(second.waitForClient());
    EXPECT_EQ(second.got, "other packet");
}

TEST_F(IpcClientTest, AReplyIsCollectedFromItsPiecesAndCutWhereItIsTooLong) {
    const std::vector<Lines> replies{{"ab", "c", "defg", "h"}, {"abcdefghijklmnop"}};
    for (const Lines& pieces : replies) {
        RawServer server(name, [&pieces](RawPipe& pipe) {
            pipe.read(12);
            for (const std::string& piece : pieces) {
                pipe.write(piece);
                sleepMs(20);
            }
            pipe.readAll();
        });
        ASSERT_EQ(send(kPacket, false), 0);
        EXPECT_EQ(read(), 0);
        EXPECT_STREQ(reply, "abcdefgh") << pieces.size() << " pieces";
        EXPECT_EQ(client.socket->state(), QLocalSocket::UnconnectedState);
        EXPECT_EQ(complaints(), Lines{});
    }
}

TEST_F(IpcClientTest, AShortReplyIsFilledWithZerosAndFails) {
    RawServer server(name, [](RawPipe& pipe) {
        pipe.read(12);
        pipe.write("abc");
    });
    ASSERT_EQ(send(kPacket, false), 0);
    std::fill(std::begin(reply), std::end(reply), '#');
    EXPECT_EQ(read(), -1);
    EXPECT_EQ(std::string(reply, 8), std::string("abc\0\0\0\0\0", 8));
    EXPECT_EQ(complaints(), Lines{logged::replyNotRead(name)});
}

TEST_F(IpcClientTest, ALateReplyFailsAndLeavesTheConnection) {
    const double waited = waitForReply();
    EXPECT_GT(waited, 0.25);
    EXPECT_LT(waited, 1.5);
    EXPECT_EQ(complaints(), Lines{logged::replyNotRead(name)});
}

TEST_F(IpcClientTest, AReplyIsWaitedForThirtySeconds) {
    client.waitMs = IPC_WAIT_MS;
    const double waited = waitForReply();
    EXPECT_GT(waited, 29.5);
    EXPECT_LT(waited, 33.0);
}

TEST_F(IpcClientTest, ReadingWithoutASendFails) {
    EXPECT_EQ(read(), -1);
    EXPECT_EQ(log.texts(XLOG_DEBUG), Lines{"E IPC ipcReadFromServer: Unconnected state : " + name});
}

TEST_F(IpcClientTest, ReadingNothingFails) {
    EXPECT_EQ(ipcReadFromServer(client, reply, 0), -1);
    EXPECT_EQ(
        log.texts(XLOG_DEBUG),
        Lines{"E IPC ipcReadFromServer called with invalid out data size 0 for server " + name});
}

TEST_F(IpcClientTest, ReadingFromAnotherServerFailsWithoutADisconnect) {
    RawServer server(name, [](RawPipe& pipe) { pipe.readAll(); });
    ASSERT_EQ(send(kPacket, false), 0);
    client.serverName = "other";
    EXPECT_EQ(read(), -1);
    EXPECT_EQ(complaints(), Lines{"E IPC ipcReadFromServer: server mismatch, server: " + name +
                                  ", orig server: other"});
    EXPECT_EQ(client.socket->state(), QLocalSocket::ConnectedState);
    client.socket.reset();  // the server waits for the end of the connection
}

TEST_F(IpcClientTest, DisconnectingAnUnconnectedSocketSaysNothing) {
    EXPECT_EQ(ipcDisconnectFromServer(client.socket.get()), 0);
    EXPECT_EQ(log.texts(XLOG_DEBUG), Lines{});
}

TEST(IpcClient, InitAndEndAreLogged) {
    LogCapture log;
    {
        IpcClient client;
        EXPECT_EQ(ipcClientInit(client, "some name"), 0);
    }
    EXPECT_EQ(log.texts(XLOG_DEBUG), (Lines{logged::clientStep("ipcClientInit", "some name"),
                                            logged::clientStep("~IpcClient", "some name")}));
}

// A connected socket that accepts no bytes, or claims to have bytes that it does not have.
class OddSocket : public QLocalSocket {
 public:
    bool refusesBytes = false;
    bool promisesBytes = false;
    int readyMs = -1;  // duration of a wait for bytes, which then claims that there are some

    qint64 bytesAvailable() const override {
        return promisesBytes ? 8 : QLocalSocket::bytesAvailable();
    }
    bool waitForReadyRead(int ms) override {
        if (readyMs < 0) return QLocalSocket::waitForReadyRead(ms);
        sleepMs(readyMs);
        return true;
    }

 protected:
    qint64 writeData(const char* bytes, qint64 size) override {
        return refusesBytes ? -1 : QLocalSocket::writeData(bytes, size);
    }
    qint64 readData(char* to, qint64 size) override {
        return promisesBytes ? -1 : QLocalSocket::readData(to, size);
    }
};

TEST_F(IpcClientTest, ASocketThatTakesNothingFailsAtOnce) {
    RawServer server(name, [](RawPipe& pipe) { pipe.readAll(); });
    auto* const odd = new OddSocket;
    client.socket.reset(odd);
    odd->refusesBytes = true;
    EXPECT_EQ(send(kPacket, true), -1);
    EXPECT_EQ(complaints(), Lines{failedWrite(12)});
    EXPECT_LT(seconds, 2.0);
}

TEST_F(IpcClientTest, PromisedBytesThatNeverComeAreWaitedForWithinTheLimit) {
    RawServer server(name, [](RawPipe& pipe) { pipe.readAll(); });
    auto* const odd = new OddSocket;
    client.socket.reset(odd);
    ASSERT_EQ(send(kPacket, false), 0);
    odd->promisesBytes = true;
    odd->readyMs = 120;
    EXPECT_EQ(read(), -1);
    EXPECT_GT(seconds, 0.29);
    EXPECT_LT(seconds, 2.0);
    EXPECT_EQ(std::string(reply, 8), std::string(8, '\0'));
    EXPECT_EQ(complaints(), Lines{logged::replyNotRead(name)});
    client.socket.reset();
}

TEST_F(IpcClientTest, TwoSendsShareOneConnection) {
    const Recorder server(name);
    ASSERT_EQ(send("first ", false), 0);
    log.clear();
    ASSERT_EQ(send("second", true), 0);
    for (const std::string& line : log.texts(XLOG_DEBUG)) {
        EXPECT_EQ(line.find("connecting to server"), std::string::npos) << line;
    }
    EXPECT_TRUE(server.waitForClient());
    EXPECT_EQ(server.got, "first second");
    EXPECT_EQ(server.server.served(), 1);
}

TEST_F(IpcClientTest, ADisconnectWaitsForThePeerToTakeWhatIsStillToBeWritten) {
    std::string got;
    const std::string large(1 << 20, 'x');
    {
        RawServer server(
            name,
            [&got, size = kPacket.size() + large.size()](RawPipe& pipe) {
                sleepMs(50);
                got = pipe.read(size);
            },
            /*bufferSize=*/0);
        client.waitMs = 10'000;
        ASSERT_EQ(send(kPacket, false), 0);
        ASSERT_EQ(client.socket->write(large.data(), static_cast<qint64>(large.size())),
                  static_cast<qint64>(large.size()));
        EXPECT_EQ(ipcDisconnectFromServer(client.socket.get(), client.waitMs), 0);
        EXPECT_EQ(client.socket->state(), QLocalSocket::UnconnectedState);
        EXPECT_EQ(complaints(), Lines{});
        EXPECT_TRUE(waitUntil([&server] { return server.served() > 0; }));
    }
    EXPECT_EQ(got.size(), kPacket.size() + large.size());
}

// Hosts that connect to the errors of their own sockets with queued connections need it.
TEST(IpcClient, TheTypeOfASocketsErrorIsKnownToQt) {
    IpcClient client;
    ipcClientInit(client, "some name");
    EXPECT_NE(QMetaType::type("QLocalSocket::LocalSocketError"), int{QMetaType::UnknownType});
}

// In its own process, since other tests would see the application object.
SUBPROCESS(deletesSocketsBesideAnApplication) {
    int count = 0;
    QCoreApplication application(count, nullptr);
    QPointer<QLocalSocket> own;
    {
        IpcClient client;
        ipcClientInit(client, "some name");
        own = client.socket.get();
    }
    if (own.isNull()) return 1;  // the event loop's work
    QCoreApplication::sendPostedEvents(own.data(), QEvent::DeferredDelete);
    if (!own.isNull()) return 2;
    bool gone = false;
    std::thread([&gone] {
        QPointer<QLocalSocket> foreign;
        {
            IpcClient client;
            ipcClientInit(client, "some name");
            foreign = client.socket.get();
        }
        gone = foreign.isNull();
    }).join();
    return gone ? 0 : 3;
}

TEST(IpcClient, ASocketIsDeletedWhereAnEventLoopWillComeAndAtOnceElsewhere) {
    EXPECT_EQ(runSubprocess("deletesSocketsBesideAnApplication").status, 0u);
}

}  // namespace
