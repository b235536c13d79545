#include "StandinPipe.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "xpl/Xerr.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

constexpr DWORD kBufferSize = 65536;

std::wstring pipePath(const std::string& serverName) {
    std::wstring path;
    if (xtextToWide("\\\\.\\pipe\\" + serverName, path) != XERR_SUCCESS) path.clear();
    return path;
}

// The server may identify the client but not impersonate it.
HANDLE openClient(const std::wstring& path) {
    return ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                         FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION,
                         nullptr);
}

}  // namespace

struct StandinPipe::Operation : OVERLAPPED {
    explicit Operation(HANDLE event) : OVERLAPPED{} {
        ::ResetEvent(event);
        hEvent = event;
    }
};

bool standinIsServed(const std::string& serverName) {
    return ::WaitNamedPipeW(pipePath(serverName).c_str(), 1) ||
           ::GetLastError() != ERROR_FILE_NOT_FOUND;
}

StandinPipe::~StandinPipe() { close(); }

StandinPipe::StandinPipe(StandinPipe&& other) noexcept
    : pipe_(std::exchange(other.pipe_, nullptr)), event_(std::exchange(other.event_, nullptr)) {}

StandinPipe& StandinPipe::operator=(StandinPipe&& other) noexcept {
    std::swap(pipe_, other.pipe_);
    std::swap(event_, other.event_);
    return *this;
}

StandinPipe StandinPipe::of(void* pipe) {
    if (pipe == INVALID_HANDLE_VALUE) return {};
    return {pipe, ::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
}

StandinPipe StandinPipe::listen(const std::string& serverName) {
    return of(::CreateNamedPipeW(pipePath(serverName).c_str(),
                                 PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED, PIPE_TYPE_BYTE,
                                 PIPE_UNLIMITED_INSTANCES, kBufferSize, kBufferSize, 0, nullptr));
}

StandinPipe StandinPipe::connect(const std::string& serverName, std::uint32_t milliseconds) {
    const std::wstring path = pipePath(serverName);
    const ULONGLONG end = ::GetTickCount64() + milliseconds;
    for (;;) {
        const HANDLE pipe = openClient(path);
        if (pipe != INVALID_HANDLE_VALUE) return of(pipe);
        if (::GetLastError() != ERROR_PIPE_BUSY) return {};
        const ULONGLONG now = ::GetTickCount64();
        if (now >= end) return {};
        // Another client may take the free instance.
        ::WaitNamedPipeW(path.c_str(), static_cast<DWORD>(end - now));
    }
}

bool StandinPipe::accept(std::uint32_t milliseconds) {
    Operation operation(event_);
    std::uint32_t ignored = 0;
    const BOOL ok = ::ConnectNamedPipe(pipe_, &operation);
    if (!ok) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_PIPE_CONNECTED || error == ERROR_NO_DATA) return true;
    }
    return finish(ok, operation, milliseconds, ignored);
}

bool StandinPipe::read(std::string& bytes, std::size_t count) {
    while (bytes.size() < count) {
        char piece[4096];
        const std::size_t wanted = std::min(sizeof piece, count - bytes.size());
        Operation operation(event_);
        std::uint32_t got = 0;
        const BOOL ok = ::ReadFile(pipe_, piece, static_cast<DWORD>(wanted), nullptr, &operation);
        if (!finish(ok, operation, kForever, got) || got == 0) return false;
        bytes.append(piece, got);
    }
    return true;
}

bool StandinPipe::write(std::string_view bytes, std::uint32_t milliseconds) {
    if (bytes.empty()) return true;
    Operation operation(event_);
    std::uint32_t written = 0;
    const BOOL ok =
        ::WriteFile(pipe_, bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
    return finish(ok, operation, milliseconds, written) && written == bytes.size();
}

void StandinPipe::close() {
    if (pipe_ == nullptr) return;
    ::CloseHandle(std::exchange(pipe_, nullptr));
    ::CloseHandle(std::exchange(event_, nullptr));
}

// Cancels an operation that takes too long and waits for it to end: it uses the caller's memory.
bool StandinPipe::finish(int ok, Operation& operation, std::uint32_t milliseconds,
                         std::uint32_t& count) {
    if (!ok && ::GetLastError() != ERROR_IO_PENDING) return false;
    if (::WaitForSingleObject(event_, milliseconds) != WAIT_OBJECT_0) {
        ::CancelIoEx(pipe_, &operation);
    }
    DWORD done = 0;
    const BOOL success = ::GetOverlappedResult(pipe_, &operation, &done, TRUE);
    count = done;
    return success != FALSE;
}
