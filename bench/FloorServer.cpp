#include "FloorServer.h"

#include <array>
#include <utility>

#include "Bench.h"
#include "support/WindowsForTests.h"

namespace {

constexpr DWORD kBuffer = 65536;
constexpr std::size_t kReplyLengthOffset = 8;

std::wstring pipePath(const std::string& name) { return L"\\\\.\\pipe\\" + wideForTests(name); }

// The low bit of the event suppresses the completion packet.
HANDLE unported(HANDLE event) {
    return reinterpret_cast<HANDLE>(reinterpret_cast<std::uintptr_t>(event) | 1);
}

void writeZeros(HANDLE pipe, std::uint32_t count) {
    static const std::array<char, 4096> zeros{};
    benchCheck(count <= zeros.size(), "a reply is too long");
    OVERLAPPED overlapped{};
    const HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    overlapped.hEvent = unported(event);
    DWORD done = 0;
    const BOOL written = ::WriteFile(pipe, zeros.data(), count, nullptr, &overlapped);
    if (written || ::GetLastError() == ERROR_IO_PENDING) {
        ::GetOverlappedResult(pipe, &overlapped, &done, TRUE);
    }
    ::CloseHandle(event);
}

}  // namespace

struct FloorServer::Instance {
    HANDLE pipe = nullptr;
    OVERLAPPED overlapped{};
    bool connected = false;
    PacketSplitter splitter;
    std::array<char, kBuffer> bytes;
};

FloorServer::FloorServer(const std::string& name, int instances, OnPacket onPacket)
    : onPacket_(std::move(onPacket)),
      port_(::CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, 1)) {
    for (int i = 0; i < instances; ++i) {
        auto instance = std::make_unique<Instance>();
        instance->pipe = ::CreateNamedPipeW(
            pipePath(name).c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED, PIPE_TYPE_BYTE,
            PIPE_UNLIMITED_INSTANCES, kBuffer, kBuffer, 0, nullptr);
        benchCheck(instance->pipe != INVALID_HANDLE_VALUE, "cannot create a pipe");
        ::CreateIoCompletionPort(instance->pipe, port_, 1, 0);
        instances_.push_back(std::move(instance));
    }
    for (const auto& instance : instances_) listen(*instance);
    thread_ = std::thread([this] { run(); });
}

FloorServer::~FloorServer() {
    ::PostQueuedCompletionStatus(port_, 0, 0, nullptr);
    thread_.join();
    for (const auto& instance : instances_) ::CloseHandle(instance->pipe);
    // Pending operations use their memory until they are cancelled.
    DWORD count = 0;
    ULONG_PTR key = 0;
    OVERLAPPED* overlapped = nullptr;
    while (::GetQueuedCompletionStatus(port_, &count, &key, &overlapped, 50) || overlapped) {
    }
    ::CloseHandle(port_);
}

void FloorServer::run() {
    for (;;) {
        DWORD count = 0;
        ULONG_PTR key = 0;
        OVERLAPPED* overlapped = nullptr;
        const BOOL ok = ::GetQueuedCompletionStatus(port_, &count, &key, &overlapped, INFINITE);
        if (overlapped == nullptr) return;
        Instance& instance = *CONTAINING_RECORD(overlapped, Instance, overlapped);
        if (instance.connected && (!ok || count == 0)) {
            ::DisconnectNamedPipe(instance.pipe);
            listen(instance);
        } else {
            take(instance, count);
        }
    }
}

void FloorServer::listen(Instance& instance) {
    instance.connected = false;
    instance.splitter.clear();
    instance.overlapped = {};
    if (::ConnectNamedPipe(instance.pipe, &instance.overlapped)) return;
    if (::GetLastError() == ERROR_IO_PENDING) return;
    ::PostQueuedCompletionStatus(port_, 0, 1,
                                 &instance.overlapped);  // a client has already connected
}

void FloorServer::take(Instance& instance, std::size_t count) {
    if (count > 0) {
        instance.splitter.feed(instance.bytes.data(), count, [&](std::string_view packet) {
            onPacket_(packet);
            std::uint32_t reply = 0;
            std::memcpy(&reply, packet.data() + kReplyLengthOffset, sizeof reply);
            if (reply > 0) writeZeros(instance.pipe, reply);
        });
    }
    instance.connected = true;
    instance.overlapped = {};
    if (::ReadFile(instance.pipe, instance.bytes.data(), kBuffer, nullptr, &instance.overlapped)) {
        return;
    }
    if (::GetLastError() == ERROR_IO_PENDING) return;
    ::PostQueuedCompletionStatus(port_, 0, 1, &instance.overlapped);
}

void* floorConnect(const std::string& name) {
    const std::wstring path = pipePath(name);
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const HANDLE pipe = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr);
        if (pipe != INVALID_HANDLE_VALUE) return pipe;
        if (!::WaitNamedPipeW(path.c_str(), 1000)) ::Sleep(1);
    }
    benchFail("cannot connect");
}
