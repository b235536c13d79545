// Connections of the server: assembles packets from the incoming bytes and writes replies.
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

// Below Qt's limit for an array. Longer packets are not accepted.
constexpr qint64 kMaxBuffer = std::numeric_limits<int>::max() - 64;

// A larger buffer is not kept for the next packet.
constexpr int kKeptBuffer = 64 * 1024;

// Packets are small: a call of the socket costs more than copying one.
constexpr qint64 kBlock = qint64{16} * 1024;

// Replies are written in pieces that the socket's buffers can take.
constexpr qint64 kReplyPiece = 1'048'576;

std::atomic<int> liveRecords{0};

std::uint32_t numberAt(const IpcConnectionInfo& info, std::size_t offset) {
    std::uint32_t number = 0;
    std::memcpy(&number, info.packet() + offset, sizeof number);
    return number;
}

const char* serverOf(const IpcConnectionInfo& info) { return info.serverName->c_str(); }

// Bytes that have arrived and are not part of a packet yet: those read ahead and those in the
// socket. They are lost when the socket closes.
qint64 unread(const IpcConnectionInfo& info) {
    const qint64 inSocket = info.socket->bytesAvailable();
    if (!info.socket->isOpen()) return inSocket;
    return inSocket + std::max<qint64>(info.held() - qint64{info.packetLen}, 0);
}

bool hasUnread(const IpcConnectionInfo& info) {
    return info.held() > qint64{info.packetLen} || info.socket->bytesAvailable() > 0;
}

// Makes room: moves the held bytes to the front of the buffer.
void dropHandedOver(IpcConnectionInfo& info) {
    if (info.start == 0) return;
    info.buffer.remove(0, info.start);
    info.start = 0;
}

// Reads a block, or the rest of the packet if that is longer, but never more than is available:
// memory grows with what has arrived, not with what a header claims.
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

// Reads the header of the next packet and the length of the expected reply. Returns false and
// consumes nothing when the header is incomplete.
bool beginPacket(IpcConnectionInfo& info, std::uint32_t& replyLength, const char* self) {
    if (info.held() < kHeaderSize && unread(info) < kHeaderSize) return false;
    XLOG_D(kIpcServerLog, "%s for serverName %s, bytesAvailable = %d", self, serverOf(info),
           static_cast<int>(unread(info)));
    if (info.held() < kHeaderSize) readMore(info);
    if (info.held() < kHeaderSize) return false;  // the socket had announced more
    info.packetLen = numberAt(info, IPC_LENGTH_OFFSET);
    replyLength = numberAt(info, IPC_REPLY_LENGTH_OFFSET);
    XLOG_D(kIpcServerLog,
           "%s for serverName %s, packetLen = %u, buffer.size = %d, opcode = 0x%x, outLen = %d",
           self, serverOf(info), info.packetLen, kHeaderSize, numberAt(info, IPC_OPCODE_OFFSET),
           static_cast<std::int32_t>(replyLength));
    return true;
}

// Reads the rest of the packet after its first `size` bytes. The number of missing bytes is a
// signed 32-bit number: negative for a length that is too small or above 2 GiB. After such a header
// the next packet cannot be found.
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

// Zeroed memory for a reply, so that no old memory reaches the peer. Null, and a reply length of 0,
// when out of memory.
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
        if (count <= 0) return;  // the peer has disconnected
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

// The packet stays in the buffer while the decoder runs: receive() reads nothing then. The packet
// is consumed before its reply is written: the socket may throw when out of memory, and the packet
// must not be dispatched twice.
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

// Runs dispose() from the event loop, when nothing uses the connection any more.
void disposeLater(IpcConnectionInfo* info, IpcDecode decode);

// Qt's event loop calls the functions below: an exception that reached it would end the server's
// thread.

// Ends a connection whose next packet cannot be found.
void drop(IpcConnectionInfo* info) {
    info->buffer.clear();
    info->start = 0;
    xcatchAll(kIpcServerLog, "ipcReadCommand", [info] { info->socket->abort(); });
}

// Handles incoming data. After an exception the connection is aborted and never read again: its
// next packet cannot be found, and a closed socket may still announce bytes. When a host runs its
// own event loop inside a callback, this is reentered and returns at once; the outer call continues
// with what has arrived.
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

// When a disconnect is reported, the peer's last bytes may still be unread.
void dispose(IpcConnectionInfo* info, IpcDecode decode) {
    if (info->busy) {
        info->disconnectedMeanwhile = true;
        return;
    }
    if (unread(*info) > 0) receive(info, decode);
    QLocalSocket* const socket = info->socket;
    // Called by the event loop, when nothing else uses the socket: when there is no memory for
    // deferred deletion, delete it now.
    if (!xcatchAll(kIpcServerLog, "ipcDestroyConnection", [socket] { socket->deleteLater(); }))
        delete socket;
}

void disposeLater(IpcConnectionInfo* info, IpcDecode decode) {
    info->disconnectedMeanwhile = false;
    QMetaObject::invokeMethod(
        info->socket, [info, decode] { dispose(info, decode); }, Qt::QueuedConnection);
}

// Called by a signal of the socket, which therefore must not be deleted here. Without memory for
// the deferred disposal, the disconnected socket stays until its parent, the server, is deleted.
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
    buffer.reserve(kHeaderSize);  // reserved memory is kept for shorter packets
    XLOG_D(kIpcServerLog, "%s called for serverName %s, packetLen = %u", "IpcConnectionInfo",
           serverName->c_str(), packetLen);
    ++liveRecords;
}

IpcConnectionInfo::~IpcConnectionInfo() { --liveRecords; }

int IpcConnectionInfo::live() { return liveRecords; }

void ipcHandleNewConnection(QLocalServer* server, IpcDecode decode, const std::string* serverName) {
    QLocalSocket* const socket = server->nextPendingConnection();
    if (socket == nullptr) return;
    // When out of memory, drops the connection. If even the deferred deletion fails, the server
    // deletes the socket at its end.
    const auto abandon = [](QLocalSocket* connection) {
        xcatchAll(kIpcServerLog, "ipcHandleNewConnection", [connection] { connection->abort(); });
        xcatchAll(kIpcServerLog, "ipcHandleNewConnection",
                  [connection] { connection->deleteLater(); });
    };
    std::unique_ptr<QLocalSocket, decltype(abandon)> unfinished(socket, abandon);
    // The three handlers, which the socket owns, share the record: it is freed with the last one,
    // whatever the order of the signals.
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
    // Not kept between calls: a packet that a later call completes gets no reply.
    std::uint32_t replyLength = 0;
    do {
        const bool begun = info->packetLen != 0;
        if (!begun && !beginPacket(*info, replyLength, self)) return;
        // After a header, the bytes that were read with it count as new.
        const int size = begun ? info->held() : kHeaderSize;
        readBody(*info, size, self);
        if (info->isWhole()) {
            dispatch(*info, decode, replyLength, self);
        } else {
            XLOG_D(kIpcServerLog, "%s for serverName %s, bufferReadSize = %d, packetLen = %u", self,
                   serverOf(*info), info->held(), info->packetLen);
            if (info->held() == size) return;  // no new bytes, whatever the socket announces
        }
    } while (hasUnread(*info));
}

void ipcDestroyConnection(IpcConnectionInfo* info, IpcDecode decode) {
    XLOG_D(kIpcServerLog, "%s called for serverName %s info %p bytes %d state %d",
           "ipcDestroyConnection", serverOf(*info), static_cast<void*>(info),
           static_cast<int>(unread(*info)), static_cast<int>(info->socket->state()));
    disposeLater(info, decode);
}
