#include "support/RawServer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "support/WindowsForTests.h"

namespace {

// A client may have written and closed before this call. Its bytes can still be read.
bool waitForClient(void* pipe) {
    if (::ConnectNamedPipe(pipe, nullptr)) return true;
    const DWORD error = ::GetLastError();
    return error == ERROR_PIPE_CONNECTED || error == ERROR_NO_DATA;
}

std::wstring pipePath(const std::string& name) { return L"\\\\.\\pipe\\" + wideForTests(name); }

}  // namespace

RawPipe::~RawPipe() { close(); }

void RawPipe::close() {
    if (handle_ != nullptr) ::CloseHandle(std::exchange(handle_, nullptr));
}

std::string RawPipe::read(std::size_t count) {
    std::string bytes;
    char piece[65536];
    while (bytes.size() < count) {
        DWORD got = 0;
        const DWORD wanted =
            static_cast<DWORD>(std::min<std::size_t>(sizeof piece, count - bytes.size()));
        if (!::ReadFile(handle_, piece, wanted, &got, nullptr) || got == 0) break;
        bytes.append(piece, got);
    }
    return bytes;
}

std::string RawPipe::readAll() { return read(SIZE_MAX); }

bool RawPipe::write(std::string_view bytes) {
    DWORD written = 0;
    return ::WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                       nullptr) &&
           written == bytes.size();
}

RawServer::RawServer(const std::string& name, Serve serve, std::size_t bufferSize)
    : path_(pipePath(name)),
      serve_(std::move(serve)),
      bufferSize_(static_cast<unsigned long>(bufferSize)) {
    void* const first = listen();  // before the constructor returns, so that clients find it
    thread_ = std::thread([this, first] {
        run(first);
        ended_ = true;
    });
}

RawServer::~RawServer() {
    stop_ = true;
    const HANDLE wake =
        ::CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    // A client that stays connected would keep the server reading.
    const HANDLE thread = reinterpret_cast<HANDLE>(thread_.native_handle());
    while (!ended_ && ::WaitForSingleObject(thread, 20) == WAIT_TIMEOUT) {
        ::CancelSynchronousIo(thread);
    }
    thread_.join();
    if (wake != INVALID_HANDLE_VALUE) ::CloseHandle(wake);
}

void* RawServer::listen() const {
    const HANDLE pipe =
        ::CreateNamedPipeW(path_.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE,
                           PIPE_UNLIMITED_INSTANCES, bufferSize_, bufferSize_, 0, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot create the pipe");
    return pipe;
}

void RawServer::run(void* first) {
    for (void* pipe = first;;) {
        const bool connected = waitForClient(pipe);
        void* const current = pipe;
        RawPipe connection(current);
        if (stop_) return;
        pipe = listen();  // the next client finds a server while this one is served
        if (!connected) continue;
        serve_(connection);
        ++served_;
    }
}

LeavingServer::LeavingServer(const std::string& name) {
    const HANDLE pipe = ::CreateNamedPipeW(pipePath(name).c_str(), PIPE_ACCESS_DUPLEX,
                                           PIPE_TYPE_BYTE, 1, 65536, 65536, 0, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot create the pipe");
    thread_ = std::thread([this, pipe] {
        // Peeking fails until a client connects.
        while (!stop_ && !(met_ = ::PeekNamedPipe(pipe, nullptr, 0, nullptr, nullptr, nullptr))) {
            ::Sleep(1);
        }
        ::CloseHandle(pipe);
    });
}

LeavingServer::~LeavingServer() {
    stop_ = true;
    thread_.join();
}

void* connectRaw(const std::string& name) {
    const HANDLE pipe = ::CreateFileW(pipePath(name).c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    return pipe == INVALID_HANDLE_VALUE ? nullptr : pipe;
}

void* connectWhenFree(const std::string& name) {
    for (int i = 0; i < 2000; ++i) {
        if (void* const pipe = connectRaw(name)) return pipe;
        if (!::WaitNamedPipeW(pipePath(name).c_str(), 1000)) ::Sleep(5);
    }
    return nullptr;
}
