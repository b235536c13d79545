// Local sockets as files in the temporary folder, where Qt creates them.
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "support/Platform.h"
#include "support/RawServer.h"

namespace {

// A handle is the descriptor plus one, because null means none.
int descriptorOf(void* handle) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(handle)) - 1;
}

void* handleOf(int descriptor) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor) + 1);
}

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) throw std::runtime_error("name too long");
    std::memcpy(address.sun_path, path.data(), path.size());
    return address;
}

std::string socketPath(const std::string& name) {
    return (std::filesystem::temp_directory_path() / name).u8string();
}

int newSocket() {
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) throw std::runtime_error("no socket");
    return descriptor;
}

int listeningSocket(const std::string& path) {
    const sockaddr_un address = addressOf(path);
    ::unlink(path.c_str());
    const int descriptor = newSocket();
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(descriptor, SOMAXCONN) != 0) {
        throw std::runtime_error("cannot create the socket");
    }
    return descriptor;
}

// The signal has an empty handler, so it only interrupts a system call of the receiving thread.
constexpr int kInterrupt = SIGUSR1;

void letCallsBeInterrupted() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ::sigaction(kInterrupt, &action, nullptr);
}

}  // namespace

RawPipe::~RawPipe() { close(); }

void RawPipe::close() {
    if (handle_ != nullptr) ::close(descriptorOf(std::exchange(handle_, nullptr)));
}

std::string RawPipe::read(std::size_t count) {
    std::string bytes;
    char piece[65536];
    while (bytes.size() < count) {
        const std::size_t wanted = std::min<std::size_t>(sizeof piece, count - bytes.size());
        const ssize_t got = ::read(descriptorOf(handle_), piece, wanted);
        if (got <= 0) break;
        bytes.append(piece, static_cast<std::size_t>(got));
    }
    return bytes;
}

std::string RawPipe::readAll() { return read(SIZE_MAX); }

bool RawPipe::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent =
            ::send(descriptorOf(handle_), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

RawServer::RawServer(const std::string& name, Serve serve, std::size_t bufferSize)
    : path_(std::filesystem::u8path(socketPath(name)).wstring()),
      serve_(std::move(serve)),
      bufferSize_(static_cast<unsigned long>(bufferSize)) {
    letCallsBeInterrupted();
    void* const first = listen();
    thread_ = std::thread([this, first] {
        run(first);
        ended_ = true;
    });
}

RawServer::~RawServer() {
    stop_ = true;
    while (!ended_) {
        ::pthread_kill(thread_.native_handle(), kInterrupt);
        sleepMs(5);
    }
    thread_.join();
}

void* RawServer::listen() const {
    return handleOf(listeningSocket(std::filesystem::path(path_).u8string()));
}

void RawServer::run(void* first) {
    while (!stop_) {
        const int descriptor = ::accept4(descriptorOf(first), nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0) continue;
        const int size = static_cast<int>(bufferSize_);  // the client sets the other one
        ::setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
        RawPipe connection(handleOf(descriptor));
        if (stop_) break;
        serve_(connection);
        ++served_;
    }
    ::close(descriptorOf(first));
    ::unlink(std::filesystem::path(path_).c_str());
}

LeavingServer::LeavingServer(const std::string& name) {
    const std::string path = socketPath(name);
    const int descriptor = listeningSocket(path);
    thread_ = std::thread([this, path, descriptor] {
        pollfd waiting{descriptor, POLLIN, 0};
        while (!stop_ && !(met_ = ::poll(&waiting, 1, /*milliseconds=*/1) == 1)) {
        }
        ::close(descriptor);
        ::unlink(path.c_str());
    });
}

LeavingServer::~LeavingServer() {
    stop_ = true;
    thread_.join();
}

void* connectRaw(const std::string& name) {
    const sockaddr_un address = addressOf(socketPath(name));
    const int descriptor = newSocket();
    if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        return handleOf(descriptor);
    }
    ::close(descriptor);
    return nullptr;
}

void* connectWhenFree(const std::string& name) {
    for (int i = 0; i < 2000; ++i) {
        if (void* const pipe = connectRaw(name)) return pipe;
        sleepMs(5);
    }
    return nullptr;
}
