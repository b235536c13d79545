// Packet assembly from a socket in memory. A delivery is one call of ipcReadCommand.
#include <QCoreApplication>
#include <QPointer>

#include "OddSockets.h"
#include "ipc/IpcConnection.h"
#include "support/DeliveringThread.h"
#include "support/EventPackets.h"
#include "support/FatalBreak.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/TestHeaders.h"

namespace {

struct Call {
    std::string packet;
    bool hasReply;
    std::int32_t replyLength;
};
std::vector<Call> calls;

bool record(QLocalSocket*, const std::uint8_t* packet, std::int32_t length, void* reply,
            std::int32_t replyLength) {
    calls.push_back({{reinterpret_cast<const char*>(packet), static_cast<std::size_t>(length)},
                     reply != nullptr,
                     replyLength});
    return true;
}

bool fillReply(QLocalSocket* socket, const std::uint8_t* packet, std::int32_t length, void* reply,
               std::int32_t replyLength) {
    for (std::int32_t i = 0; reply != nullptr && i < replyLength; ++i) {
        static_cast<char*>(reply)[i] = static_cast<char>('a' + i);
    }
    return record(socket, packet, length, reply, replyLength);
}

bool throwing(QLocalSocket*, const std::uint8_t*, std::int32_t, void*, std::int32_t) {
    throw std::runtime_error("the decoder's own");
}

const std::string kServerName = "vtr_test_nvo";

class IpcReadCommandTest : public ::testing::Test {
 protected:
    IpcReadCommandTest() : info(&socket, &kServerName) {
        calls.clear();
        log.clear();
    }

    void deliver(std::string_view bytes, IpcDecode decode = record) {
        socket.waiting.append(bytes);
        ipcReadCommand(&info, decode);
    }

    // Delivers pieces of at most size() bytes.
    template <typename Size>
    void deliverInPieces(std::string_view bytes, Size size) {
        while (!bytes.empty()) {
            const std::size_t count = std::min(static_cast<std::size_t>(size()), bytes.size());
            deliver(bytes.substr(0, count));
            bytes.remove_prefix(count);
        }
    }

    // Ends the connection, and returns its only log line.
    std::string lineOfTheEnd() {
        log.clear();
        ipcDestroyConnection(&info, record);
        const Lines lines = log.texts(XLOG_DEBUG);
        EXPECT_EQ(lines.size(), 1u);
        return lines.at(0);
    }

    static Lines packets() {
        Lines all;
        for (const Call& call : calls) all.push_back(call.packet);
        return all;
    }

    LogCapture log;
    FakeSocket socket;
    IpcConnectionInfo info;
};

// Packets of every kind of event, and of short and long texts.
Lines samplePackets() {
    Lines packets{appDisplayedPacket("", ""),
                  accountListUpdatedPacket("N", std::string(5000, 'e'), 1)};
    for (const KnownEvent& event : knownEvents()) {
        packets.push_back(eventPacket(event, exampleOf(event)));
    }
    return packets;
}

std::string joined(const Lines& packets) {
    std::string all;
    for (const std::string& packet : packets) all += packet;
    return all;
}

TEST_F(IpcReadCommandTest, APacketWithoutPayloadIsHandedOverWithItsHeaderAndWithoutAReply) {
    const std::string packet = packetOf(4711, "");
    deliver(packet);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].packet, packet);
    EXPECT_FALSE(calls[0].hasReply);
    EXPECT_EQ(calls[0].replyLength, 0);
    EXPECT_EQ(socket.written, "");
}

TEST_F(IpcReadCommandTest, EveryStepIsLogged) {
    deliver(packetOf(0x1234, "abcd", 8));
    Lines lines = log.texts(XLOG_DEBUG);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0].substr(0, lines[0].find("info ") + 5),
              "D IPC ipcReadCommand called for info ");
    lines.erase(lines.begin());
    EXPECT_EQ(
        lines,
        (Lines{logged::connectionStep("ipcReadCommand", kServerName),
               logged::readStep(kServerName, "bytesAvailable = 16"),
               logged::readStep(kServerName,
                                "packetLen = 16, buffer.size = 12, opcode = 0x1234, outLen = 8"),
               logged::readStep(kServerName, "bytesToRead = 4"), logged::readWhole(kServerName)}));
}

TEST_F(IpcReadCommandTest, ABodyInPiecesIsLoggedAtEachDelivery) {
    const std::string packet = packetOf(1, "abcd");
    deliver(packet.substr(0, 13));
    log.clear();
    deliver(packet.substr(13, 1));
    Lines lines = log.texts(XLOG_DEBUG);
    lines.erase(lines.begin(), lines.begin() + 2);
    EXPECT_EQ(lines, (Lines{logged::readStep(kServerName, "bytesToRead = 3"),
                            logged::readPart(kServerName, "14") + "16"}));
    EXPECT_TRUE(calls.empty());
}

TEST_F(IpcReadCommandTest, AHeaderInPiecesStaysInTheSocket) {
    const std::string packet = packetOf(1, "");
    for (std::size_t i = 0; i + 1 < packet.size(); ++i) {
        deliver(packet.substr(i, 1));
        EXPECT_EQ(socket.bytesAvailable(), static_cast<qint64>(i + 1));
        EXPECT_EQ(info.packetLen, 0u);
    }
    deliver(packet.substr(11));
    EXPECT_EQ(packets(), Lines{packet});
}

TEST_F(IpcReadCommandTest, TwoPacketsOfOneDeliveryAreDecodedInOrderInOneCall) {
    const std::string first = packetOf(1, "a");
    const std::string second = packetOf(2, "bb");
    deliver(first + second);
    EXPECT_EQ(packets(), (Lines{first, second}));
}

TEST_F(IpcReadCommandTest, EachPacketOfADeliveryIsLoggedWithWhatIsLeftThen) {
    deliver(packetOf(1, "a") + packetOf(2, "bb") + packetOf(3, "").substr(0, 5));
    Lines left;
    for (const std::string& line : log.texts(XLOG_DEBUG)) {
        const std::size_t at = line.find("bytesAvailable");
        if (at != std::string::npos) left.push_back(line.substr(at));
    }
    EXPECT_EQ(left, (Lines{"bytesAvailable = 32", "bytesAvailable = 19"}));
}

TEST_F(IpcReadCommandTest, AHeaderThatBeginsAfterAPacketIsCompletedByTheNextDelivery) {
    const std::string first = packetOf(1, "a");
    const std::string second = packetOf(2, "bb", 2);
    for (std::size_t at = 1; at < 12; ++at) {
        calls.clear();
        deliver(first + second.substr(0, at), fillReply);
        EXPECT_EQ(packets(), Lines{first}) << at;
        deliver(second.substr(at), fillReply);
        EXPECT_EQ(packets(), (Lines{first, second})) << at;
    }
    EXPECT_EQ(socket.written.size(), 22u) << "its header was whole in the second delivery only";
}

TEST_F(IpcReadCommandTest, AHeaderThatIsNotWholeCountsAsUnreadWhenThePeerLeaves) {
    deliver(packetOf(1, "a") + packetOf(2, "").substr(0, 5));
    const std::string line = lineOfTheEnd();
    EXPECT_NE(line.find(" bytes 5 state 0"), std::string::npos) << line;
}

TEST_F(IpcReadCommandTest, ASocketThatClosesLosesAHeaderThatIsNotWhole) {
    deliver(packetOf(1, "a") + packetOf(2, "").substr(0, 5));
    socket.close();
    const std::string line = lineOfTheEnd();
    EXPECT_NE(line.find(" bytes 0 state 0"), std::string::npos) << line;
}

TEST_F(IpcReadCommandTest, WhatComesInAHundredDeliveriesOfABlockTakesTheMemoryOfAFew) {
    const std::string packet = packetOf(1, std::string(1000, 'x'));
    std::string all;
    for (int i = 0; i < 1600; ++i) all += packet;
    deliverInPieces(all, [this] {
        EXPECT_LE(info.buffer.capacity(), 64 * 1024);
        return 16'000;
    });
    EXPECT_LE(info.buffer.capacity(), 64 * 1024);
    EXPECT_EQ(packets(), Lines(1600, packet));
}

TEST_F(IpcReadCommandTest, EverySplitIntoTwoDeliveriesGivesTheSamePackets) {
    const std::string all = joined(samplePackets());
    for (std::size_t at = 1; at < all.size(); ++at) {
        calls.clear();
        deliver(std::string_view(all).substr(0, at));
        deliver(std::string_view(all).substr(at));
        ASSERT_EQ(packets(), samplePackets()) << "split at " << at;
        ASSERT_EQ(info.packetLen, 0u);
    }
}

TEST_F(IpcReadCommandTest, OneByteAtATimeGivesTheSamePackets) {
    deliverInPieces(joined(samplePackets()), [] { return 1; });
    EXPECT_EQ(packets(), samplePackets());
}

TEST_F(IpcReadCommandTest, TwoToSixtyFourGluedPacketsGiveTheSamePackets) {
    const Lines samples = samplePackets();
    for (std::size_t count = 2; count <= 64; ++count) {
        calls.clear();
        Lines expected;
        for (std::size_t i = 0; i < count; ++i) expected.push_back(samples[i % samples.size()]);
        deliver(joined(expected));
        ASSERT_EQ(packets(), expected);
    }
}

TEST_F(IpcReadCommandTest, RandomPiecesGiveTheSamePackets) {
    std::mt19937 random(20'240'307);
    const Lines samples = samplePackets();
    for (int round = 0; round < 300; ++round) {
        calls.clear();
        Lines expected;
        for (int i = 0; i < 20; ++i) expected.push_back(samples[random() % samples.size()]);
        deliverInPieces(joined(expected), [&random] { return 1 + random() % 600; });
        ASSERT_EQ(packets(), expected) << "round " << round;
    }
}

TEST_F(IpcReadCommandTest, AReplyWantedInOneDeliveryIsExactlyThatLongAndZeroed) {
    deliver(packetOf(1, "abc", 8));
    EXPECT_EQ(socket.written, std::string(8, '\0'));
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_TRUE(calls[0].hasReply);
    EXPECT_EQ(calls[0].replyLength, 8);
}

TEST_F(IpcReadCommandTest, TheReplyIsWhatTheDecoderFilledIn) {
    deliver(packetOf(1, "", 3) + packetOf(2, "", 2), fillReply);
    EXPECT_EQ(socket.written, "abcab");
}

TEST_F(IpcReadCommandTest, APacketCompletedByALaterDeliveryGetsNoReply) {
    const std::string packet = packetOf(1, "abcd", 8);
    for (std::size_t at = 12; at < packet.size(); ++at) {
        calls.clear();
        deliver(packet.substr(0, at), fillReply);
        deliver(packet.substr(at), fillReply);
        ASSERT_EQ(calls.size(), 1u);
        EXPECT_FALSE(calls[0].hasReply);
        EXPECT_EQ(calls[0].replyLength, 0);
    }
    EXPECT_EQ(socket.written, "");
}

TEST_F(IpcReadCommandTest, AHeaderInTwoDeliveriesWithItsBodyGetsItsReply) {
    const std::string packet = packetOf(1, "abcd", 2);
    deliver(packet.substr(0, 11), fillReply);
    deliver(packet.substr(11), fillReply);
    EXPECT_EQ(socket.written, "ab");
}

TEST_F(IpcReadCommandTest, ThePacketAfterALateBodyGetsItsOwnReply) {
    const std::string late = packetOf(1, "abcd", 8);
    deliver(late.substr(0, 14), fillReply);
    deliver(late.substr(14) + packetOf(2, "", 2), fillReply);
    EXPECT_EQ(socket.written, "ab");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_FALSE(calls[0].hasReply);
    EXPECT_TRUE(calls[1].hasReply);
}

TEST_F(IpcReadCommandTest, AReplyThatCannotBeAllocatedIsAnErrorLineAndNothingIsWritten) {
    deliver(packetOf(1, "", 0x80000000u));
    EXPECT_EQ(log.texts(XLOG_ERROR),
              Lines{logged::readError(kServerName, "no memory for a reply of 2147483648 bytes")});
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_FALSE(calls[0].hasReply);
    EXPECT_EQ(calls[0].replyLength, 0);
    EXPECT_EQ(socket.written, "");
}

TEST_F(IpcReadCommandTest, ALongReplyIsWrittenWhole) {
    deliver(packetOf(1, "", 3'000'001));
    EXPECT_EQ(socket.written, std::string(3'000'001, '\0'));
}

TEST_F(IpcReadCommandTest, AReplyIsWrittenWholeHoweverLittleTheSocketTakes) {
    struct NarrowSocket : FakeSocket {
        qint64 writeData(const char* bytes, qint64) override {
            return FakeSocket::writeData(bytes, 1);
        }
    };
    NarrowSocket narrow;
    IpcConnectionInfo connection(&narrow, &kServerName);
    narrow.waiting = packetOf(1, "", 3);
    ipcReadCommand(&connection, fillReply);
    EXPECT_EQ(narrow.written, "abc");
}

TEST_F(IpcReadCommandTest, AReplyIsGivenUpWhenThePeerHasGone) {
    // Accepts one write. Every later one fails, or accepts nothing.
    struct LeavingSocket : FakeSocket {
        qint64 writeData(const char* bytes, qint64 size) override {
            return written.empty() ? FakeSocket::writeData(bytes, size) : answer;
        }
        qint64 answer = -1;
    };
    for (const qint64 answer : {-1, 0}) {
        LeavingSocket leaving;
        leaving.answer = answer;
        IpcConnectionInfo connection(&leaving, &kServerName);
        leaving.waiting = packetOf(1, "", 3'000'000);
        ipcReadCommand(&connection, record);
        EXPECT_EQ(leaving.written, std::string(1'048'576, '\0'));
        EXPECT_EQ(connection.packetLen, 0u);
    }
}

TEST_F(IpcReadCommandTest, APacketWhoseDecoderThrowsCountsAsConsumed) {
    const std::string good = packetOf(2, "");
    deliver(packetOf(1, "", 4), throwing);
    deliver(good);
    EXPECT_EQ(packets(), Lines{good});
    EXPECT_EQ(log.texts(XLOG_ERROR),
              Lines{logged::exceptionCaught("IPC", "ipcReadCommand", "the decoder's own")});
    EXPECT_EQ(socket.written, std::string(4, '\0'));
}

TEST_F(IpcReadCommandTest, APacketWhoseReplyFindsNoMemoryCountsAsConsumed) {
    ScarceSocket scarce;
    scarce.writes = false;
    IpcConnectionInfo connection(&scarce, &kServerName);
    const std::string asking = packetOf(1, "", 4);
    const std::string next = packetOf(2, "");
    scarce.waiting = asking;
    EXPECT_THROW(ipcReadCommand(&connection, record), std::bad_alloc);
    EXPECT_EQ(connection.packetLen, 0u);
    EXPECT_EQ(connection.buffer.size(), 0);
    scarce.waiting = next;
    ipcReadCommand(&connection, record);
    EXPECT_EQ(packets(), (Lines{asking, next}));
}

TEST_F(IpcReadCommandTest, ASocketThatClaimsBytesAndGivesNoneEndsTheCall) {
    // Keeps claiming bytes, as a closed socket does on Windows, up to a limit of this test.
    struct ClosedSocket : FakeSocket {
        qint64 bytesAvailable() const override {
            return FakeSocket::bytesAvailable() + (refused < 1000 ? 1 : 0);
        }
        qint64 readData(char* to, qint64 size) override {
            if (!waiting.empty()) return FakeSocket::readData(to, size);
            ++refused;
            return -1;
        }
        int refused = 0;
    };
    ClosedSocket closed;
    IpcConnectionInfo connection(&closed, &kServerName);
    closed.waiting = packetOf(1, "abcd").substr(0, 14);
    ipcReadCommand(&connection, record);
    EXPECT_LE(closed.refused, 3);
    EXPECT_EQ(connection.buffer.size(), 14);
    EXPECT_EQ(packets(), Lines{});
}

TEST_F(IpcReadCommandTest, AClaimedLengthTakesNoMemoryBeforeTheBytesCome) {
    const std::uint32_t largest = 0x8000000Bu;  // 2^31 + 11: the last that is not fatal
    deliver(bytesOf(1u) + bytesOf(largest) + bytesOf(0u) + "abc");
    EXPECT_EQ(info.packetLen, largest);
    EXPECT_EQ(info.buffer.size(), 15);
    EXPECT_LT(info.buffer.capacity(), 4096);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(log.texts(XLOG_ERROR), Lines{});
}

TEST_F(IpcReadCommandTest, APacketThatCannotBeHeldIsRefusedBeforeItIsCopied) {
    const int size = std::numeric_limits<int>::max() - 64;
    info.buffer = QByteArray::fromRawData("", size);  // nothing may read it
    info.packetLen = 0x80000000u;
    socket.waiting = "x";
    EXPECT_THROW(ipcReadCommand(&info, record), std::bad_alloc);
    EXPECT_EQ(info.buffer.size(), size);
    EXPECT_EQ(socket.waiting, "x");
}

TEST_F(IpcReadCommandTest, AMegabyteIsHandedOverWholeAndItsMemoryGivenBack) {
    const std::string packet = packetOf(1, std::string(1 << 20, 'x'));
    deliver(packet);
    EXPECT_EQ(packets(), Lines{packet});
    EXPECT_LT(info.buffer.capacity(), 4096);
}

TEST_F(IpcReadCommandTest, APacketOfSeveralBlocksLeavesTheNextOneAlone) {
    for (const std::size_t size : {16'384u, 40'000u, 100'000u}) {
        calls.clear();
        const std::string large = packetOf(1, std::string(size, 'x'));
        const std::string next = packetOf(2, std::string(size, 'y'));
        deliver(large + next + large);
        EXPECT_EQ(packets(), (Lines{large, next, large})) << size;
    }
}

// The socket announces more bytes of a packet than the first delivery has.
struct Shortfall {
    const char* name;
    std::size_t payload;
    std::size_t first;
    qint64 lost;
};

void PrintTo(const Shortfall& row, std::ostream* out) { *out << row.name; }

class IpcShortfallTest : public IpcReadCommandTest,
                         public ::testing::WithParamInterface<Shortfall> {};

TEST_P(IpcShortfallTest, ThePacketIsCompletedLater) {
    const Shortfall& row = GetParam();
    LossySocket lossy;
    IpcConnectionInfo connection(&lossy, &kServerName);
    const std::string packet = packetOf(1, std::string(row.payload, 'x'));
    lossy.waiting = packet.substr(0, row.first);
    lossy.lost = row.lost;
    ipcReadCommand(&connection, record);
    EXPECT_EQ(static_cast<std::size_t>(connection.buffer.size()), row.first);
    EXPECT_EQ(connection.packetLen, row.first < 12 ? 0 : packet.size());
    EXPECT_EQ(packets(), Lines{});
    lossy.waiting = packet.substr(row.first);
    ipcReadCommand(&connection, record);
    EXPECT_TRUE(packets() == Lines{packet});
}

INSTANTIATE_TEST_SUITE_P(Shortfalls, IpcShortfallTest,
                         ::testing::Values(Shortfall{"InALongPacket", 40'000, 20'000, 30'000},
                                           Shortfall{"InAShortPacket", 8, 15, 5},
                                           Shortfall{"InAHeader", 8, 5, 30}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(IpcReadCommandTest, UnreadBytesOfAPeerThatHasLeftAreReadBeforeTheSocketIsDeleted) {
    const DeliveringThread delivering;
    auto* const leaving = new FakeSocket;
    QPointer<QLocalSocket> alive(leaving);
    IpcConnectionInfo connection(leaving, &kServerName);
    const std::string packet = packetOf(1, "the last words");
    leaving->waiting = packet;
    ipcDestroyConnection(&connection, record);
    EXPECT_EQ(packets(), Lines{}) << "not inside the signal";
    QCoreApplication::sendPostedEvents(leaving);
    EXPECT_EQ(packets(), Lines{packet});
    EXPECT_FALSE(alive.isNull());
    QCoreApplication::sendPostedEvents(leaving, QEvent::DeferredDelete);
    EXPECT_TRUE(alive.isNull());
}

// A length whose rest is not a positive 32-bit number is logged, and ends the process.
SUBPROCESS(deliversALength) {
    FakeSocket socket;
    IpcConnectionInfo info(&socket, &kServerName);
    const auto length = static_cast<std::uint32_t>(std::stoul(arguments.at(0)));
    socket.waiting = bytesOf(1u) + bytesOf(length) + bytesOf(0u);
    ipcReadCommand(&info, record);
    return 0;
}

void expectFatal(std::uint32_t length, const std::string& rest) {
    const std::string text = std::to_string(length);
    const Lines lines = linesUntilBreak("deliversALength", {text});
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2],
              logged::untagged(logged::lengthInvalid(kServerName, text, rest)));
    EXPECT_EQ(lines.back(), logged::fatalBreak("", "Source/ipc/IpcServer"));
}

TEST(IpcReadCommandFatalTest, ALengthOfZero) { expectFatal(0, "-12"); }
TEST(IpcReadCommandFatalTest, ALengthOfOne) { expectFatal(1, "-11"); }
TEST(IpcReadCommandFatalTest, ALengthOneBelowTheHeader) { expectFatal(11, "-1"); }
TEST(IpcReadCommandFatalTest, TheFirstLengthBeyondThe32BitRest) {
    expectFatal(0x8000000Cu, "-2147483648");
}
TEST(IpcReadCommandFatalTest, TheLargestLength) { expectFatal(0xFFFFFFFFu, "-13"); }
TEST(IpcReadCommandFatalTest, TheLargestLengthThatIsNot) {
    EXPECT_EQ(runSubprocess("deliversALength", {"2147483659"}).status, 0u);
}

}  // namespace
