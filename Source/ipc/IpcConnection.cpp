// Connections of the server: from bytes as they come to whole packets, and back to replies.
#include "ipc/IpcConnection.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "ipc/IpcPacket.h"
#include "ipc/IpcServer.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xmem.h"

namespace {

constexpr int kHeaderSize = static_cast<int>(IPC_HEADER_SIZE);

// Below Qt's limit for one array. A packet that would be longer cannot be held.
constexpr qint64 kMaxBuffer = std::numeric_limits<int>::max() - 64;

// A buffer that grew larger than this for one packet is not kept for the next.
constexpr int kKeptBuffer = 64 * 1024;

// Packets are small, and each call of the socket costs more than the bytes of one.
constexpr qint64 kBlock = qint64{16} * 1024;

// Replies are handed over in pieces that the socket's own buffers can take.
constexpr qint64 kReplyPiece = 1'048'576;

std::atomic<int> liveRecords{0};

std::uint32_t numberAt(const IpcConnectionInfo& info, std::size_t offset) {
    std::uint32_t number = 0;
    std::memcpy(&number, info.packet() + offset, sizeof number);
    return number;
}

const char* serverOf(const IpcConnectionInfo& info) { return info.serverName->c_str(); }

// Bytes that have arrived and belong to no packet yet. What was read ahead counts like what the
// socket holds, and is lost when the socket closes.
qint64 unread(const IpcConnectionInfo& info) {
    const qint64 inSocket = info.socket->bytesAvailable();
    if (!info.socket->isOpen()) return inSocket;
    return inSocket + std::max<qint64>(info.held() - qint64{info.packetLen}, 0);
}

bool hasUnread(const IpcConnectionInfo& info) {
    return info.held() > qint64{info.packetLen} || info.socket->bytesAvailable() > 0;
}

// Makes room: moves what is held to the front of the buffer.
void dropHandedOver(IpcConnectionInfo& info) {
    if (info.start == 0) return;
    info.buffer.remove(0, info.start);
    info.start = 0;
}

// Reads a block, or the rest of the packet where that is longer, and no more than there is: memory
// follows what has arrived, not what a header claims.
void readMore(IpcConnectionInfo& info) {
    dropHandedOver(info);
    const int before = info.buffer.size();
    const qint64 wanted = std::max(kBlock, qint64{info.packetLen} - before);
    const qint64 count = std::min(wanted, info.socket->bytesAvailable());
    if (count <= 0) return;
    if (before + count > kMaxBuffer) throw std::bad_alloc();
    info.buffer.resize(before + static_cast<int>(count));
    const qint64 got = info.socket->read(info.buffer.data() + before, count);
    if (got < count) info.buffer.resize(before + static_cast<int>(std::max<qint64>(got, 0)));
}

// Takes the header of the next packet, with the length of the reply that it wants. False when there
// is no whole header: it stays where it is.
bool beginPacket(IpcConnectionInfo& info, std::uint32_t& replyLength, const char* self) {
    if (info.held() < kHeaderSize && unread(info) < kHeaderSize) return false;
    XLOG_D(kIpcServerLog, "%s for serverName %s, bytesAvailable = %d", self, serverOf(info),
           static_cast<int>(unread(info)));
    if (info.held() < kHeaderSize) readMore(info);
    if (info.held() < kHeaderSize) return false;  // the socket had claimed more
    info.packetLen = numberAt(info, IPC_LENGTH_OFFSET);
    replyLength = numberAt(info, IPC_REPLY_LENGTH_OFFSET);
    XLOG_D(kIpcServerLog,
           "%s for serverName %s, packetLen = %u, buffer.size = %d, opcode = 0x%x, outLen = %d",
           self, serverOf(info), info.packetLen, kHeaderSize, numberAt(info, IPC_OPCODE_OFFSET),
           static_cast<std::int32_t>(replyLength));
    return true;
}

// Reads what the packet lacks after its first `size` bytes. The bytes still to come are a
// signed 32-bit number, so that lengths near both ends of the range give a negative one: nothing
// can find the next packet after such a header.
void readBody(IpcConnectionInfo& info, int size, const char* self) {
    const auto bytesToRead =
        static_cast<std::int32_t>(info.packetLen - static_cast<std::uint32_t>(size));
    XLOG_D(kIpcServerLog, "%s for serverName %s, bytesToRead = %d", self, serverOf(info),
           bytesToRead);
    if (bytesToRead < 0) {
        XLOG_E(kIpcServerLog,
               "%s for serverName %s, bytesToRead %d is negative, packetLen = %u, buffer size = %d",
               self, serverOf(info), bytesToRead, info.packetLen, size);
        XLOG_FATAL(kIpcServerLog);
    }
    if (!info.isWhole()) readMore(info);
}

// Memory for a reply; none, and a reply length of 0, when it cannot be had. Zeroed, so that no old
// memory reaches the peer.
XmemBytes replyBuffer(const IpcConnectionInfo& info, std::uint32_t& replyLength, const char* self) {
    if (replyLength == 0) return nullptr;
    XmemBytes reply;
    if (replyLength <= static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max())) {
        reply.reset(static_cast<unsigned char*>(xmemAllocZeroed(replyLength)));
    }
    if (reply == nullptr) {
        XLOG_E(kIpcServerLog, "%s for serverName %s, no memory for a reply of %u bytes", self,
               serverOf(info), replyLength);
        replyLength = 0;
    }
    return reply;
}

void writeReply(QLocalSocket& socket, const unsigned char* reply, std::uint32_t length) {
    const char* const bytes = reinterpret_cast<const char*>(reply);
    for (qint64 done = 0; done < length;) {
        const qint64 count = socket.write(bytes + done, std::min(kReplyPiece, length - done));
        if (count <= 0) return;  // the peer has gone
        done += count;
    }
}

// The next bytes are a header.
void consumePacket(IpcConnectionInfo& info) {
    info.start += static_cast<int>(info.packetLen);
    info.packetLen = 0;
    if (info.held() > 0) return;
    info.start = 0;
    if (info.buffer.capacity() > kKeptBuffer) {
        info.buffer.clear();
    } else {
        info.buffer.resize(0);
    }
}

// The packet stays in the buffer while the decoder runs: receive() lets nothing else in meanwhile.
// It is consumed before its reply is written: memory can run out in the socket, and the packet must
// not be dispatched again.
void dispatch(IpcConnectionInfo& info, IpcDecode decode, std::uint32_t replyLength,
              const char* self) {
    XLOG_D(kIpcServerLog, "%s for serverName %s, calling decodeFunction", self, serverOf(info));
    const XmemBytes reply = replyBuffer(info, replyLength, self);
    xcatchAll(kIpcServerLog, self, false, [&] {
        return decode(info.socket, info.packet(), static_cast<std::int32_t>(info.packetLen),
                      reply.get(), static_cast<std::int32_t>(replyLength));
    });
    consumePacket(info);
    writeReply(*info.socket, reply.get(), replyLength);
}

// Runs dispose() from the event loop, when nothing works on the connection any more.
void disposeLater(IpcConnectionInfo* info, IpcDecode decode);

// Qt's event loop calls what follows: an exception that reached it would end the server's thread.

// Ends a connection whose next packet cannot be found.
void drop(IpcConnectionInfo* info) {
    info->buffer.clear();
    info->start = 0;
    xcatchAll(kIpcServerLog, "ipcReadCommand", [info] { info->socket->abort(); });
}

// Receives what arrives on a connection. After an exception the connection is aborted and never
// read again: its next packet cannot be found, and a socket that is closed can still claim bytes. A
// host that runs an event loop of its own inside a callback comes here a second time; the first
// call goes on with what has arrived then.
void receive(IpcConnectionInfo* info, IpcDecode decode) {
    if (info->busy || info->failed) return;
    info->busy = true;
    info->failed =
        !xcatchAll(kIpcServerLog, "ipcReadCommand", [&] { ipcReadCommand(info, decode); });
    info->busy = false;
    if (info->failed) drop(info);
    if (!info->disconnectedMeanwhile) return;
    xcatchAll(kIpcServerLog, "ipcDestroyConnection", [&] { disposeLater(info, decode); });
}

// The last bytes of a peer that wrote and left can still wait here when its disconnect is reported.
void dispose(IpcConnectionInfo* info, IpcDecode decode) {
    if (info->busy) {
        info->disconnectedMeanwhile = true;
        return;
    }
    if (unread(*info) > 0) receive(info, decode);
    QLocalSocket* const socket = info->socket;
    // The event loop calls this, and nothing else works on the socket: without memory to delete it
    // later it is deleted now.
    if (!xcatchAll(kIpcServerLog, "ipcDestroyConnection", [socket] { socket->deleteLater(); }))
        delete socket;
}

void disposeLater(IpcConnectionInfo* info, IpcDecode decode) {
    info->disconnectedMeanwhile = false;
    QMetaObject::invokeMethod(
        info->socket, [info, decode] { dispose(info, decode); }, Qt::QueuedConnection);
}

// A signal of the socket calls this, which therefore cannot be deleted here. Without memory for the
// disposal it stays, disconnected, until its parent deletes it: the server, at its end.
void whenDisconnected(IpcConnectionInfo* info, IpcDecode decode) {
    xcatchAll(kIpcServerLog, "ipcDestroyConnection", [&] { ipcDestroyConnection(info, decode); });
}

void logAboutToClose(const IpcConnectionInfo* info) {
    XLOG_D(kIpcServerLog, "%s:%d AboutToClose cleaning info %p", kIpcServerLog.file, __LINE__,
           static_cast<const void*>(info));
}

}  // namespace

IpcConnectionInfo::IpcConnectionInfo(QLocalSocket* connection, const std::string* server)
    : socket(connection), serverName(server) {
    buffer.reserve(kHeaderSize);  // from here on a shorter packet keeps the memory
    XLOG_D(kIpcServerLog, "%s called for serverName %s, packetLen = %u", "IpcConnectionInfo",
           serverName->c_str(), packetLen);
    ++liveRecords;
}

IpcConnectionInfo::~IpcConnectionInfo() { --liveRecords; }

int IpcConnectionInfo::live() { return liveRecords; }

void ipcHandleNewConnection(QLocalServer* server, IpcDecode decode, const std::string* serverName) {
    QLocalSocket* const socket = server->nextPendingConnection();
    if (socket == nullptr) return;
    // Without memory for the rest there is no connection. Without memory to delete the socket later
    // either, the server deletes it at its end.
    const auto abandon = [](QLocalSocket* connection) {
        xcatchAll(kIpcServerLog, "ipcHandleNewConnection", [connection] { connection->abort(); });
        xcatchAll(kIpcServerLog, "ipcHandleNewConnection",
                  [connection] { connection->deleteLater(); });
    };
    std::unique_ptr<QLocalSocket, decltype(abandon)> unfinished(socket, abandon);
    // The three handlers share the record, and the last of them goes with the socket: it is
    // released exactly once, whatever order the signals come in.
    const auto info = std::make_shared<IpcConnectionInfo>(socket, serverName);
    XLOG_D(kIpcServerLog, "%s: New connection received for server %s", "ipcHandleNewConnection",
           serverName->c_str());
    QObject::connect(
        socket, &QLocalSocket::readyRead, socket, [info, decode] { receive(info.get(), decode); },
        Qt::DirectConnection);
    QObject::connect(
        socket, &QLocalSocket::disconnected, socket,
        [info, decode] { whenDisconnected(info.get(), decode); }, Qt::DirectConnection);
    QObject::connect(
        socket, &QLocalSocket::aboutToClose, socket, [info] { logAboutToClose(info.get()); },
        Qt::DirectConnection);
    // For a socket that could not be read from at all, disconnected() has already fired.
    if (socket->state() == QLocalSocket::UnconnectedState) ipcDestroyConnection(info.get(), decode);
    static_cast<void>(unfinished.release());
}

void ipcReadCommand(IpcConnectionInfo* info, IpcDecode decode) {
    const char* const self = "ipcReadCommand";
    XLOG_D(kIpcServerLog, "%s called for info %p", self, static_cast<void*>(info));
    XLOG_D(kIpcServerLog, "%s called for serverName %s", self, serverOf(*info));
    // Known within this call only: a packet that is completed by a later one gets no reply.
    std::uint32_t replyLength = 0;
    do {
        const bool begun = info->packetLen != 0;
        if (!begun && !beginPacket(*info, replyLength, self)) return;
        // What was read with the header of this packet is still to be taken in.
        const int size = begun ? info->held() : kHeaderSize;
        readBody(*info, size, self);
        if (info->isWhole()) {
            dispatch(*info, decode, replyLength, self);
        } else {
            XLOG_D(kIpcServerLog, "%s for serverName %s, bufferReadSize = %d, packetLen = %u", self,
                   serverOf(*info), info->held(), info->packetLen);
            if (info->held() == size) return;  // whatever the socket claims
        }
    } while (hasUnread(*info));
}

void ipcDestroyConnection(IpcConnectionInfo* info, IpcDecode decode) {
    XLOG_D(kIpcServerLog, "%s called for serverName %s info %p bytes %d state %d",
           "ipcDestroyConnection", serverOf(*info), static_cast<void*>(info),
           static_cast<int>(unread(*info)), static_cast<int>(info->socket->state()));
    disposeLater(info, decode);
}
