// Data that arrives while a connection's decoder runs its own event loop, and connections that are
// dropped. The socket is in memory.
#include <QCoreApplication>
#include <QPointer>

#include "OddSockets.h"
#include "ipc/IpcConnection.h"
#include "support/DeliveringThread.h"
#include "support/EventPackets.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/TestHeaders.h"

namespace {

const std::string kServerName = "vtr_test_nvo";

Lines packets;
std::function<void()> meanwhile;  // runs inside the decoder, once

bool record(QLocalSocket*, const std::uint8_t* packet, std::int32_t length, void*, std::int32_t) {
    packets.emplace_back(reinterpret_cast<const char*>(packet), static_cast<std::size_t>(length));
    if (const auto now = std::exchange(meanwhile, nullptr)) now();
    return true;
}

// A socket that claims more bytes than it has: enough for a packet of the largest length.
class BoundlessSocket : public FakeSocket {
 public:
    qint64 bytesAvailable() const override { return qint64{1} << 32; }
};

class IpcReentryTest : public ::testing::Test {
 protected:
    IpcReentryTest() {
        packets.clear();
        meanwhile = nullptr;
    }
    ~IpcReentryTest() override {
        EXPECT_EQ(IpcConnectionInfo::live(), 0) << "every record has been released, and once";
    }

    template <typename Socket>
    void connect(Socket* socket) {
        OneSocketServer server(socket);
        ipcHandleNewConnection(&server, record, &kServerName);
        log.clear();
    }

    // The peer leaves: delivers the events that are then queued, and the socket's deletion.
    static void disconnect(QLocalSocket* socket) {
        const QPointer<QLocalSocket> alive(socket);
        emit socket->disconnected();
        QCoreApplication::sendPostedEvents(socket);
        EXPECT_FALSE(alive.isNull());
        QCoreApplication::sendPostedEvents(socket, QEvent::DeferredDelete);
        EXPECT_TRUE(alive.isNull());
    }

    static Lines noMemoryLine() {
        return {logged::exceptionCaught("IPC", "ipcReadCommand", std::bad_alloc().what())};
    }

    const DeliveringThread delivering;
    LogCapture log;
};

}  // namespace

TEST_F(IpcReentryTest, WhatArrivesInsideADecoderIsReadAfterIt) {
    auto* const socket = new FakeSocket;
    const QPointer<QLocalSocket> alive(socket);
    connect(socket);
    const std::string first = packetOf(1, "a");
    const std::string second = packetOf(2, "bb");
    meanwhile = [&] {
        socket->waiting = second;
        emit socket->readyRead();
        EXPECT_EQ(packets, Lines{first}) << "not inside the other one";
    };
    socket->waiting = first;
    emit socket->readyRead();
    EXPECT_EQ(packets, (Lines{first, second}));
    delete alive.data();
}

TEST_F(IpcReentryTest, APeerThatLeavesInsideADecoderIsReadToItsEndAndDisposedOfOnce) {
    auto* const socket = new FakeSocket;
    QPointer<QLocalSocket> alive(socket);
    connect(socket);
    const std::string first = packetOf(1, "a");
    const std::string second = packetOf(2, "the last words");
    meanwhile = [&] {
        emit socket->disconnected();
        QCoreApplication::sendPostedEvents(socket);  // the decoder's own event loop
        QCoreApplication::sendPostedEvents(socket, QEvent::DeferredDelete);
        EXPECT_FALSE(alive.isNull()) << "it is being worked on";
        socket->waiting = second;
    };
    socket->waiting = first;
    emit socket->readyRead();
    EXPECT_EQ(packets, (Lines{first, second}));
    EXPECT_FALSE(alive.isNull());
    QCoreApplication::sendPostedEvents(socket);
    QCoreApplication::sendPostedEvents(socket, QEvent::DeferredDelete);
    EXPECT_TRUE(alive.isNull());
    EXPECT_EQ(log.texts(XLOG_ERROR), Lines{});
}

TEST_F(IpcReentryTest, APacketThatNoMemoryCanHoldDropsItsConnection) {
    auto* const socket = new BoundlessSocket;
    const QPointer<QLocalSocket> alive(socket);
    connect(socket);
    socket->waiting = bytesOf(1u) + bytesOf(0x8000000Bu) + bytesOf(0u);
    emit socket->readyRead();
    EXPECT_EQ(packets, Lines{});
    EXPECT_EQ(log.texts(XLOG_ERROR), noMemoryLine());
    // A socket that wraps another one stays open: only the inner one is aborted.
    if (closeSignals() == 1) EXPECT_FALSE(socket->isOpen());
    delete alive.data();
}

TEST_F(IpcReentryTest, APacketThatMemoryRanOutForIsNotReadAgainWhenThePeerHasLeft) {
    auto* const socket = new ScarceSocket;
    connect(socket);
    socket->waiting = packetOf(1, std::string(40'000, 'x')) + packetOf(2, "after it");
    socket->readsLeft = 1;
    emit socket->readyRead();
    const std::size_t left = socket->waiting.size();
    EXPECT_GT(left, 0u);
    socket->readsLeft = 1'000'000;
    emit socket->readyRead();
    EXPECT_EQ(socket->waiting.size(), left);
    disconnect(socket);
    EXPECT_EQ(packets.size(), 0u);
    EXPECT_EQ(log.texts(XLOG_ERROR), noMemoryLine());
}

TEST_F(IpcReentryTest, AReplyThatFindsNoMemoryDropsItsConnectionAndItsPacketIsDispatchedOnce) {
    auto* const socket = new ScarceSocket;
    connect(socket);
    const std::string asking = packetOf(1, "", 4);
    socket->waiting = asking + packetOf(2, std::string(40'000, 'x'));
    socket->writes = false;
    emit socket->readyRead();
    EXPECT_FALSE(socket->waiting.empty());
    disconnect(socket);
    EXPECT_EQ(packets, Lines{asking});
    EXPECT_EQ(log.texts(XLOG_ERROR), noMemoryLine());
}

TEST_F(IpcReentryTest, AServerWithoutAWaitingConnectionIsLeftAlone) {
    connect<QLocalSocket>(nullptr);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}
