// The instances of a named pipe, each waiting for its client.
#include <QAbstractSocket>
#include <QLocalSocket>
#include <QTimer>
#include <array>
#include <functional>

#include "ipc/IpcEventWatcherWinnt.h"
#include "ipc/IpcLocalServer.h"
#include "ipc/IpcName.h"
#include "ipc/IpcServerLog.h"
#include "xpl/Xfence.h"
#include "xpl/XmutexSecurity.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

// As many as Qt's server has: clients that come at the same moment do not have to wait.
constexpr std::size_t kInstances = 8;

// Until the system is asked again for an instance that it refused.
constexpr int kRetryMilliseconds = 100;

// For clients that wait for an instance without saying how long.
constexpr DWORD kClientMilliseconds = 3000;

HANDLE createInstance(const std::wstring& path, bool first) {
    XsidPtr everyone;
    XlocalPtr acl;
    XlocalPtr descriptor;
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, /*bInheritHandle=*/FALSE};
    if (xmutexInitSecurityAttribs(everyone, acl, descriptor) != XERR_SUCCESS) {
        return INVALID_HANDLE_VALUE;
    }
    attributes.lpSecurityDescriptor = descriptor.get();
    // Without buffers a client's write ends when the server has taken the bytes: a client that
    // writes and leaves loses nothing.
    return ::CreateNamedPipeW(
        path.c_str(),
        PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | (first ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0),
        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
        PIPE_UNLIMITED_INSTANCES, /*nOutBufferSize=*/0, /*nInBufferSize=*/0, kClientMilliseconds,
        &attributes);
}

// One instance. Its place in memory is the system's while it waits.
class Instance {
 public:
    Instance() = default;
    ~Instance() { close(); }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    bool exists() const { return handle_ != INVALID_HANDLE_VALUE; }

    // False, with the system's last error, when there can be no such instance now.
    bool open(const std::wstring& path, HANDLE event, bool first) {
        handle_ = createInstance(path, first);
        if (!exists()) return false;
        overlapped_ = {};
        overlapped_.hEvent = event;
        waiting_ = false;
        if (::ConnectNamedPipe(handle_, &overlapped_)) return true;
        const DWORD error = ::GetLastError();
        waiting_ = error == ERROR_IO_PENDING;
        // A client that has left already is a client: its connection ends at once.
        if (waiting_ || error == ERROR_PIPE_CONNECTED || error == ERROR_NO_DATA) return true;
        close();
        ::SetLastError(error);
        return false;
    }

    // Whether the wait is over; with a client, or with one that has gone.
    bool isReady() {
        DWORD ignored = 0;
        return exists() &&
               (!waiting_ || ::GetOverlappedResult(handle_, &overlapped_, &ignored, FALSE) ||
                ::GetLastError() != ERROR_IO_INCOMPLETE);
    }

    HANDLE release() {
        waiting_ = false;
        return std::exchange(handle_, INVALID_HANDLE_VALUE);
    }

 private:
    // The system writes to this object until the wait has ended, which a cancelled one does at
    // once. The event cannot tell: the instances share it.
    void close() {
        if (!exists()) return;
        if (waiting_) ::CancelIoEx(handle_, &overlapped_);
        while (waiting_ && !HasOverlappedIoCompleted(&overlapped_)) ::SwitchToThread();
        ::CloseHandle(release());
    }

    HANDLE handle_ = INVALID_HANDLE_VALUE;
    OVERLAPPED overlapped_{};
    bool waiting_ = false;
};

IpcListenError listenError(int code, const std::string& why) {
    return {code, "QLocalServer::listen: " + why};
}

}  // namespace

class IpcLocalServer::Instances {
 public:
    using Accept = std::function<void(qintptr handle)>;

    Instances(const std::wstring& path, Accept accept)
        : path_(path), accept_(std::move(accept)), watcher_([this] { takeClientsFenced(); }) {
        retry_.setSingleShot(true);
        retry_.setInterval(kRetryMilliseconds);
        QObject::connect(&retry_, &QTimer::timeout, &retry_, [this] { takeClientsFenced(); });
    }

    // False when nothing would tell of a client.
    [[nodiscard]] bool watch() { return watcher_.watch(); }

    // The first one; false, with the last error, when the name is somebody else's.
    bool openFirst() { return all_[0].open(path_, watcher_.handle(), /*first=*/true); }

    // Hands over every client that has come, and puts a new instance into each one's place. One
    // pass: what is there to be read comes in between.
    void takeClients() {
        for (Instance& instance : all_) {
            if (instance.isReady()) {
                const HANDLE handle = instance.release();
                replace(instance);
                accept_(reinterpret_cast<qintptr>(handle));
            } else if (!instance.exists()) {
                replace(instance);
            }
        }
    }

 private:
    // No exception passes through Qt's event loop.
    void takeClientsFenced() {
        xfence(kLog, "IpcLocalServer", false, [this] {
            takeClients();
            return true;
        });
    }

    // Waiting for a client of a new instance resets the event that all share, so that every
    // replacement asks for another pass.
    void replace(Instance& instance) {
        if (instance.open(path_, watcher_.handle(), /*first=*/false)) {
            ::SetEvent(watcher_.handle());
            complained_ = false;
            return;
        }
        if (!std::exchange(complained_, true)) {
            XLOG_E(kLog, "%s: no instance for the next client, error %lu", "IpcLocalServer",
                   ::GetLastError());
        }
        retry_.start();
    }

    const std::wstring path_;
    const Accept accept_;
    IpcEventWatcher watcher_;
    QTimer retry_;
    std::array<Instance, kInstances> all_;
    bool complained_ = false;
};

IpcLocalServer::IpcLocalServer() { setSocketOptions(WorldAccessOption); }

IpcLocalServer::~IpcLocalServer() = default;

std::optional<IpcListenError> IpcLocalServer::open(const std::string& serverName) {
    std::wstring path;
    if (serverName.empty() || xtextToWide("\\\\.\\pipe\\" + serverName, path) != XERR_SUCCESS) {
        return listenError(QAbstractSocket::HostNotFoundError, "Name error");
    }
    instances_ = std::make_unique<Instances>(path, [this](qintptr handle) { accept(handle); });
    if (ipcNameIsServed(serverName)) {
        return listenError(QAbstractSocket::AddressInUseError, "Address in use");
    }
    if (!instances_->watch()) {
        return listenError(QAbstractSocket::SocketResourceError, "Out of resources");
    }
    if (!instances_->openFirst()) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_ACCESS_DENIED) {  // somebody was first after all
            return listenError(QAbstractSocket::AddressInUseError, "Address in use");
        }
        return listenError(QAbstractSocket::UnknownSocketError,
                           qt_error_string(static_cast<int>(error)).toStdString());
    }
    instances_->takeClients();
    return std::nullopt;
}

void IpcLocalServer::accept(qintptr handle) {
    auto* const socket = new QLocalSocket(this);
    socket->setSocketDescriptor(handle);
    pending_.enqueue(socket);
    emit newConnection();
}

bool IpcLocalServer::hasPendingConnections() const { return !pending_.isEmpty(); }

QLocalSocket* IpcLocalServer::nextPendingConnection() {
    return pending_.isEmpty() ? nullptr : pending_.dequeue();
}
