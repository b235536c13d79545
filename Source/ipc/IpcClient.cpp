// The client side of the local sockets: one connection for one request.
#include "ipc/IpcClient.h"

#include <private/qthread_p.h>
#include <QCoreApplication>
#include <QLocalSocket>
#include <QMetaType>
#include <QThread>
#include <chrono>
#include <cstddef>
#include <cstring>

#include "ipc/IpcQt.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xlog.h"
#include "xpl/Xunload.h"

namespace {

constexpr XlogModule kLog{XlogTag::IPC, "Source/ipc/IpcClient"};

constexpr const char* kErrorType = "QLocalSocket::LocalSocketError";

using Clock = std::chrono::steady_clock;
constexpr std::chrono::nanoseconds kSlowCall{10'000'000};

QString nameOf(const IpcClient& client) { return QString::fromStdString(client.serverName); }

std::string currentServer(const QLocalSocket& socket) { return socket.serverName().toStdString(); }

bool isConnected(const QLocalSocket& socket) {
    return socket.state() == QLocalSocket::ConnectedState;
}

// Whether deferred deletion would ever be delivered on this thread.
bool deliversDeferredDeletion() {
    QThread* const thread = QThread::currentThread();
    const QCoreApplication* const application = QCoreApplication::instance();
    if (application != nullptr && application->thread() == thread) return true;
    return !QThreadData::get2(thread)->isAdopted;
}

bool connectToServer(IpcClient& client, const char* self) {
    QLocalSocket& socket = *client.socket;
    XLOG_D(kLog, "%s: check if we are already connected to server: %s", self,
           client.serverName.c_str());
    if (isConnected(socket) && socket.serverName() != nameOf(client)) {
        XLOG_W(kLog, "%s: disconnecting from server: %s, orig server: %s", self,
               currentServer(socket).c_str(), client.serverName.c_str());
        ipcDisconnectFromServer(&socket, client.waitMs);
    }
    if (!isConnected(socket)) {
        XLOG_D(kLog, "%s: connecting to server: %s", self, client.serverName.c_str());
        socket.connectToServer(nameOf(client), QIODevice::ReadWrite);
    }
    if (socket.state() == QLocalSocket::UnconnectedState) {
        const std::string text = socket.errorString().toStdString();
        XLOG_D(kLog, "%s: Socket in unconnected state, server: %s, socket error: %d(%s)", self,
               client.serverName.c_str(), static_cast<int>(socket.error()), text.c_str());
        return false;
    }
    if (!socket.waitForConnected(client.waitMs)) {
        const std::string text = socket.errorString().toStdString();
        XLOG_W(kLog, "%s: cannot connect to server: %s, socket error: %d(%s)", self,
               client.serverName.c_str(), static_cast<int>(socket.error()), text.c_str());
        return false;
    }
    return true;
}

// Waits until everything written to the socket is in the pipe. A socket whose peer has disconnected
// drops its buffer, so only bytes that it reports as written count.
bool waitUntilWritten(QLocalSocket& socket, const qint64& reported, qint64 size, int waitMs) {
    while (reported < size) {
        if (!socket.waitForBytesWritten(waitMs)) return reported >= size;
    }
    return true;
}

bool writeAll(IpcClient& client, const char* data, int size, const char* self) {
    QLocalSocket& socket = *client.socket;
    qint64 reported = 0;
    const QObject counting;  // disconnects when it goes out of scope, also after an exception
    QObject::connect(&socket, &QLocalSocket::bytesWritten, &counting,
                     [&reported](qint64 count) { reported += count; });
    qint64 written = 0;
    bool ok = true;
    while (ok && written < size) {
        const int rest = static_cast<int>(size - written);
        XLOG_D(kLog, "%s: writing data of size %d to server %s", self, rest,
               client.serverName.c_str());
        const qint64 count = socket.write(data + written, rest);
        // A count of 0 would make this loop endless.
        ok = count > 0 && waitUntilWritten(socket, reported, written + count, client.waitMs);
        if (ok) {
            written += count;
        } else {
            XLOG_W(kLog, "%s: ERROR: writing data of size %d to server %s failed", self, rest,
                   client.serverName.c_str());
        }
    }
    return ok;
}

bool connectAndWrite(IpcClient& client, const char* data, int size, const char* self) {
    if (!connectToServer(client, self)) return false;
    XLOG_D(kLog, "%s: successfully connected to server: %s, send data of size %d", self,
           client.serverName.c_str(), size);
    if (!writeAll(client, data, size, self)) return false;
    XLOG_D(kLog, "%s: total data of size %d written successfully for server %s", self, size,
           client.serverName.c_str());
    return true;
}

void warnWhenSlow(const IpcClient& client, Clock::time_point start, int result, int size,
                  const char* self) {
    const auto elapsed = std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start);
    if (elapsed <= kSlowCall) return;
    XLOG_W(kLog, "%s: function took %llu nsecs, err = %d, data size = %d, server = %s", self,
           static_cast<unsigned long long>(elapsed.count()), result, size,
           client.serverName.c_str());
}

// Reads up to `size` bytes within the client's time limit, and returns their number. A socket may
// hold bytes that it has not announced, so reads before each wait and after the last.
qint64 collect(IpcClient& client, char* out, qint64 size) {
    QLocalSocket& socket = *client.socket;
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(client.waitMs);
    qint64 got = 0;
    for (bool more = true;;) {
        if (socket.bytesAvailable() > 0) {
            const qint64 count = socket.read(out + got, size - got);
            if (count > 0) got += count;
        }
        if (got == size || !more) return got;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        more = left > 0 && socket.waitForReadyRead(static_cast<int>(left));
    }
}

// Qt keeps pointers to the functions that create and destroy a value of a registered type, which
// are in this library. Unregister them at unload, unless the host had registered the type before.
void registerErrorType() {
    static const bool once = [] {
        if (QMetaType::type(kErrorType) != QMetaType::UnknownType) return true;
        static int type = qRegisterMetaType<QLocalSocket::LocalSocketError>(kErrorType);
        xunloadRemember(&type,
                        [](void* kept) { QMetaType::unregisterType(*static_cast<int*>(kept)); });
        return true;
    }();
    static_cast<void>(once);
}

}  // namespace

// Runs in destructors. Only the client uses its socket, so it can be deleted at once when there is
// no memory for deferred deletion.
void IpcSocketDeleter::operator()(QLocalSocket* socket) const {
    const bool later = xcatchAll(kLog, "~IpcClient", false, [socket] {
        if (!deliversDeferredDeletion()) return false;
        socket->deleteLater();
        return true;
    });
    if (!later) delete socket;
}

IpcClient::~IpcClient() {
    XLOG_D(kLog, "%s called for server: %s", "~IpcClient", serverName.c_str());
}

int ipcClientInit(IpcClient& client, const std::string& serverName) {
    XLOG_D(kLog, "%s called for server: %s", "ipcClientInit", serverName.c_str());
    ipcKeepQtLoaded();
    registerErrorType();
    client.serverName = serverName;
    client.socket.reset(new QLocalSocket);
    return 0;
}

int ipcSendToServer(IpcClient& client, const void* data, int size, bool disconnectAfter) {
    const char* const self = "ipcSendToServer";
    XLOG_D(kLog, "%s called with size %d", self, size);
    const Clock::time_point start = Clock::now();
    if (size <= 0) {
        XLOG_W(kLog, "%s called with invalid data size %d for server %s", self, size,
               client.serverName.c_str());
        return -1;
    }
    const int result = connectAndWrite(client, static_cast<const char*>(data), size, self) ? 0 : -1;
    if (disconnectAfter) ipcDisconnectFromServer(client.socket.get(), client.waitMs);
    warnWhenSlow(client, start, result, size, self);
    return result;
}

int ipcReadFromServer(IpcClient& client, void* out, int outSize) {
    const char* const self = "ipcReadFromServer";
    const char* const server = client.serverName.c_str();
    if (outSize <= 0) {
        XLOG_E(kLog, "%s called with invalid out data size %d for server %s", self, outSize,
               server);
        return -1;
    }
    QLocalSocket& socket = *client.socket;
    if (!isConnected(socket)) {
        XLOG_E(kLog, "%s: Unconnected state : %s", self, server);
        return -1;
    }
    XLOG_D(kLog, "%s: check if we are already connected to server: %s", self, server);
    if (socket.serverName() != nameOf(client)) {
        XLOG_E(kLog, "%s: server mismatch, server: %s, orig server: %s", self,
               currentServer(socket).c_str(), server);
        return -1;
    }
    char* const bytes = static_cast<char*>(out);
    const qint64 got = collect(client, bytes, outSize);
    if (got < outSize) {
        std::memset(bytes + got, 0, static_cast<std::size_t>(outSize - got));
        XLOG_E(kLog, "%s: Unable to read from server: %s", self, server);
        return -1;
    }
    ipcDisconnectFromServer(&socket, client.waitMs);
    return 0;
}

int ipcDisconnectFromServer(QLocalSocket* socket, int waitMs) {
    const char* const self = "ipcDisconnectFromServer";
    if (!isConnected(*socket)) return 0;
    const std::string server = currentServer(*socket);
    XLOG_D(kLog, "%s called for server: %s", self, server.c_str());
    XLOG_D(kLog, "Before disconnectFromServer serverName: %s toWrite: %d state: %d", server.c_str(),
           static_cast<int>(socket->bytesToWrite()), static_cast<int>(socket->state()));
    socket->disconnectFromServer();
    XLOG_D(kLog, "After disconnectFromServer serverName: %s toWrite: %d state: %d", server.c_str(),
           static_cast<int>(socket->bytesToWrite()), static_cast<int>(socket->state()));
    if (socket->state() == QLocalSocket::UnconnectedState) return 0;
    if (socket->waitForDisconnected(waitMs)) return 0;
    const std::string text = socket->errorString().toStdString();
    XLOG_W(kLog, "%s: cannot disconnect from server: %s, socket error: %d(%s)", self,
           server.c_str(), static_cast<int>(socket->error()), text.c_str());
    return -1;
}
