// A named-pipe server without Qt.
#include "StandinServer.h"

#include <algorithm>
#include <utility>

#include "StandinDecode.h"
#include "ipc/IpcPacket.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

constexpr DWORD kBufferSize = 65536;
constexpr DWORD kMaxPacket = 256u << 20;

std::wstring pipePath(const std::string& serverName) {
    std::wstring path;
    if (xtextToWide("\\\\.\\pipe\\" + serverName, path) != XERR_SUCCESS) path.clear();
    return path;
}

// A handle that closes itself.
class Handle {
 public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() {
        if (isValid()) ::CloseHandle(handle_);
    }
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    bool isValid() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

 private:
    HANDLE handle_;
};

Handle listen(const std::wstring& path) {
    return Handle(::CreateNamedPipeW(path.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                                     PIPE_TYPE_BYTE, PIPE_UNLIMITED_INSTANCES, kBufferSize,
                                     kBufferSize, 0, nullptr));
}

// One end of a pipe, whose operations end when the peer goes.
class Connection {
 public:
    explicit Connection(Handle pipe)
        : pipe_(std::move(pipe)), event_(::CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

    // Waits for a client. One that wrote and went has left its bytes.
    bool accept(DWORD milliseconds) {
        OVERLAPPED operation = start();
        if (::ConnectNamedPipe(pipe_.get(), &operation)) return true;
        const DWORD error = ::GetLastError();
        if (error == ERROR_PIPE_CONNECTED || error == ERROR_NO_DATA) return true;
        if (error != ERROR_IO_PENDING) return false;
        if (::WaitForSingleObject(event_.get(), milliseconds) == WAIT_OBJECT_0) return true;
        DWORD ignored = 0;
        ::CancelIo(pipe_.get());
        ::GetOverlappedResult(pipe_.get(), &operation, &ignored, TRUE);
        return false;
    }

    bool read(std::string& bytes, std::size_t count) {
        while (bytes.size() < count) {
            char piece[4096];
            const std::size_t wanted = std::min(sizeof piece, count - bytes.size());
            OVERLAPPED operation = start();
            DWORD got = 0;
            const BOOL ok =
                ::ReadFile(pipe_.get(), piece, static_cast<DWORD>(wanted), nullptr, &operation);
            if (!finish(ok, operation, got) || got == 0) return false;
            bytes.append(piece, got);
        }
        return true;
    }

    void write(std::string_view bytes) {
        if (bytes.empty()) return;
        OVERLAPPED operation = start();
        DWORD written = 0;
        const BOOL ok = ::WriteFile(pipe_.get(), bytes.data(), static_cast<DWORD>(bytes.size()),
                                    nullptr, &operation);
        finish(ok, operation, written);
    }

 private:
    OVERLAPPED start() {
        ::ResetEvent(event_.get());
        OVERLAPPED operation{};
        operation.hEvent = event_.get();
        return operation;
    }

    bool finish(BOOL ok, OVERLAPPED& operation, DWORD& count) {
        if (!ok && ::GetLastError() != ERROR_IO_PENDING) return false;
        return ::GetOverlappedResult(pipe_.get(), &operation, &count, TRUE) != FALSE;
    }

    Handle pipe_;
    Handle event_;
};

void reply(Connection& connection, const StandinScript& script, std::size_t length) {
    if (script.delayMs > 0) ::Sleep(static_cast<DWORD>(script.delayMs));
    const std::string bytes = standinReply(script, length);
    const std::size_t first = std::min(script.split.value_or(bytes.size()), bytes.size());
    connection.write(std::string_view(bytes).substr(0, first));
    if (first == bytes.size()) return;
    ::Sleep(50);
    connection.write(std::string_view(bytes).substr(first));
}

// False when the program is to end.
bool serveConnection(Connection& connection, const StandinScript& script,
                     const std::function<bool(std::string_view)>& onPacket) {
    for (std::string packet; connection.read(packet, IPC_HEADER_SIZE); packet.clear()) {
        const StandinHeader header = standinHeader(packet);
        if (header.length > kMaxPacket) return onPacket(packet);
        if (!connection.read(packet, header.length)) return onPacket(packet);
        const bool goOn = onPacket(packet);
        if (script.closeEarly) return goOn;
        if (header.replyLength > 0 && header.replyLength <= kMaxPacket) {
            reply(connection, script, header.replyLength);
        }
        if (!goOn) return false;
    }
    return true;
}

}  // namespace

bool standinIsServed(const std::string& serverName) {
    return ::WaitNamedPipeW(pipePath(serverName).c_str(), 1) ||
           ::GetLastError() != ERROR_FILE_NOT_FOUND;
}

void standinServe(const std::string& serverName, const StandinScript& script, int idleSeconds,
                  const std::function<bool(std::string_view)>& onPacket) {
    const std::wstring path = pipePath(serverName);
    const auto idleMs = static_cast<DWORD>(idleSeconds) * 1000;
    Handle next = listen(path);
    while (next.isValid()) {
        Connection connection(std::move(next));
        if (!connection.accept(idleMs)) return;
        Handle following = listen(path);  // the next client finds a server while this one is served
        if (script.neverRead) {
            ::Sleep(idleMs);
            return;
        }
        if (!serveConnection(connection, script, onPacket)) return;
        next = std::move(following);
    }
}
