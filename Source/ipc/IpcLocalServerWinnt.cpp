// A named pipe server with several instances, each waiting for a client.
#include <QAbstractSocket>
#include <QLocalSocket>
#include <QTimer>
#include <array>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "ipc/IpcEventWatcherWinnt.h"
#include "ipc/IpcLocalServer.h"
#include "ipc/IpcName.h"
#include "ipc/IpcServer.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xerr.h"
#include "xpl/XobjectSecurity.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

// As many as Qt's server has, so that clients that connect at the same time need not wait.
constexpr std::size_t kInstances = 8;

// Delay before retrying to create an instance.
constexpr int kRetryMilliseconds = 100;

// Default wait of clients for a free instance.
constexpr DWORD kClientMilliseconds = 3000;

// Closes the server's end of a pipe. Disconnects the client first, or the name would stay in use
// until the client closes its end.
struct PipeClose {
    void operator()(HANDLE pipe) const noexcept {
        ::DisconnectNamedPipe(pipe);
        ::CloseHandle(pipe);
    }
};
using Pipe = std::unique_ptr<std::remove_pointer_t<HANDLE>, PipeClose>;

// The error of a failed call, never ERROR_SUCCESS: a call may fail without setting one.
DWORD failure(DWORD error) { return error != ERROR_SUCCESS ? error : ERROR_GEN_FAILURE; }

// Returns INVALID_HANDLE_VALUE and sets the last error when the instance cannot be created.
HANDLE createInstance(const std::wstring& path, SECURITY_ATTRIBUTES& access, bool first) {
    // No buffers: a client's write completes when the server has read the bytes, so a client that
    // writes and disconnects loses nothing.
    return ::CreateNamedPipeW(
        path.c_str(),
        PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | (first ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0),
        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
        PIPE_UNLIMITED_INSTANCES, /*nOutBufferSize=*/0, /*nInBufferSize=*/0, kClientMilliseconds,
        &access);
}

// One instance. It must not move while it waits, since the system writes to it.
class Instance {
 public:
    Instance() = default;
    ~Instance() { close(); }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    bool exists() const { return pipe_ != nullptr; }

    // Returns ERROR_SUCCESS, or why the instance cannot be created.
    DWORD open(const std::wstring& path, SECURITY_ATTRIBUTES& access, HANDLE event, bool first) {
        const HANDLE made = createInstance(path, access, first);
        if (made == INVALID_HANDLE_VALUE) return failure(::GetLastError());
        pipe_.reset(made);
        overlapped_ = {};
        overlapped_.hEvent = event;
        waiting_ = false;
        if (::ConnectNamedPipe(made, &overlapped_)) return ERROR_SUCCESS;
        const DWORD error = failure(::GetLastError());
        waiting_ = error == ERROR_IO_PENDING;
        // A client that has already left counts as a connection, which ends at once.
        if (waiting_ || error == ERROR_PIPE_CONNECTED || error == ERROR_NO_DATA) {
            return ERROR_SUCCESS;
        }
        close();
        return error;
    }

    // Whether the wait has ended. The client may have left already.
    bool isReady() {
        DWORD ignored = 0;
        return exists() &&
               (!waiting_ || ::GetOverlappedResult(pipe_.get(), &overlapped_, &ignored, FALSE) ||
                ::GetLastError() != ERROR_IO_INCOMPLETE);
    }

    Pipe release() {
        waiting_ = false;
        return std::move(pipe_);
    }

 private:
    // Waits for the end of a cancelled wait, because the system writes to this object until then.
    // The event cannot show the end, since all instances share it.
    void close() {
        if (!exists()) return;
        if (waiting_) ::CancelIoEx(pipe_.get(), &overlapped_);
        while (waiting_ && !HasOverlappedIoCompleted(&overlapped_)) ::SwitchToThread();
        release().reset();
    }

    Pipe pipe_;
    OVERLAPPED overlapped_{};
    bool waiting_ = false;
};

IpcListenError listenError(int code, const std::string& why) {
    return {code, "QLocalServer::listen: " + why};
}

}  // namespace

class IpcLocalServer::Instances {
 public:
    Instances(const std::wstring& path, IpcLocalServer& server)
        : path_(path), server_(server), watcher_([this] { takeClientsOrLog(); }) {
        retry_.setSingleShot(true);
        retry_.setInterval(kRetryMilliseconds);
        QObject::connect(&retry_, &QTimer::timeout, &retry_, [this] { takeClientsOrLog(); });
    }

    // Returns false when the watcher cannot start.
    [[nodiscard]] bool watch() { return watcher_.watch(); }

    // Opens the first instance. Returns ERROR_SUCCESS, ERROR_ACCESS_DENIED when another process has
    // the name, or another error.
    DWORD openFirst() {
        if (const auto error = xobjectSecurityInit(security_)) return failure(*error);
        access_.lpSecurityDescriptor = security_.descriptor.get();
        return all_[0].open(path_, access_, watcher_.handle(), /*first=*/true);
    }

    // Accepts every client that has connected, and replaces its instance. One pass only, so that
    // pending data is read in between.
    void takeClients() {
        for (Instance& instance : all_) {
            if (instance.isReady()) {
                Pipe pipe = instance.release();
                replace(instance);
                auto socket = std::make_unique<QLocalSocket>(&server_);
                // Unbuffered: the connection reads into its own buffer.
                socket->setSocketDescriptor(reinterpret_cast<qintptr>(pipe.release()),
                                            QLocalSocket::ConnectedState,
                                            QIODevice::ReadWrite | QIODevice::Unbuffered);
                server_.queue(std::move(socket));
                emit server_.newConnection();
            } else if (!instance.exists()) {
                replace(instance);
            }
        }
    }

 private:
    // No exception passes through Qt's event loop.
    void takeClientsOrLog() {
        xcatchAll(kIpcServerLog, "IpcLocalServer", [this] { takeClients(); });
    }

    // Waiting on a new instance resets the shared event, so every replacement requests another
    // pass.
    void replace(Instance& instance) {
        const DWORD error = instance.open(path_, access_, watcher_.handle(), /*first=*/false);
        if (error == ERROR_SUCCESS) {
            ::SetEvent(watcher_.handle());
            complained_ = false;
            return;
        }
        if (!std::exchange(complained_, true)) {
            XLOG_E(kIpcServerLog, "%s: no instance for the next client, error %lu",
                   "IpcLocalServer", error);
        }
        retry_.start();
    }

    const std::wstring path_;
    IpcLocalServer& server_;
    XobjectSecurity security_;
    SECURITY_ATTRIBUTES access_{sizeof(SECURITY_ATTRIBUTES), nullptr, /*bInheritHandle=*/FALSE};
    IpcEventWatcher watcher_;
    QTimer retry_;
    std::array<Instance, kInstances> all_;
    bool complained_ = false;
};

IpcLocalServer::IpcLocalServer() = default;

IpcLocalServer::~IpcLocalServer() = default;

std::optional<IpcListenError> IpcLocalServer::open(const std::string& serverName) {
    std::wstring path;
    if (serverName.empty() || xtextToWide("\\\\.\\pipe\\" + serverName, path) != XERR_SUCCESS) {
        return listenError(QAbstractSocket::HostNotFoundError, "Name error");
    }
    instances_ = std::make_unique<Instances>(path, *this);
    if (ipcNameIsServed(serverName)) {
        return listenError(QAbstractSocket::AddressInUseError, "Address in use");
    }
    if (!instances_->watch()) {
        return listenError(QAbstractSocket::SocketResourceError, "Out of resources");
    }
    const DWORD error = instances_->openFirst();
    if (error == ERROR_ACCESS_DENIED) {  // another process was first
        return listenError(QAbstractSocket::AddressInUseError, "Address in use");
    }
    if (error != ERROR_SUCCESS) {
        return listenError(QAbstractSocket::UnknownSocketError,
                           qt_error_string(static_cast<int>(error)).toStdString());
    }
    instances_->takeClients();
    return std::nullopt;
}

void IpcLocalServer::queue(std::unique_ptr<QLocalSocket> socket) {
    pending_.enqueue(socket.get());
    static_cast<void>(socket.release());  // the server, its parent, owns it
}

bool IpcLocalServer::hasPendingConnections() const { return !pending_.isEmpty(); }

QLocalSocket* IpcLocalServer::nextPendingConnection() {
    return pending_.isEmpty() ? nullptr : pending_.dequeue();
}
