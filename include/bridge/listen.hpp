/**
 * @file listen.hpp
 * @brief Registers the callbacks and reports whether events will arrive.
 */
#ifndef BRIDGE_LISTEN_HPP
#define BRIDGE_LISTEN_HPP

#include <bridge/windows_calls.h>
#include <bridge/callbacks.hpp>
#include <bridge/dispatch.hpp>
#include <bridge/event_queue.hpp>
#include <bridge/process.hpp>
#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace bridge {

/** Whether this process receives the events of its client id. */
struct [[nodiscard]] ListenResult {
    /** True when it does. */
    bool ok;
    /** The process that serves the client id; 0 when there is none. */
    unsigned long processId;
    /** What is wrong; empty when ok. */
    std::string text;

    explicit operator bool() const noexcept { return ok; }
};

/** Internal; not for hosts. */
namespace detail {

/** The process that serves a client id; 0 when none does so within the limit. */
inline unsigned long serverOf(const std::string& client, std::chrono::milliseconds limit) {
#if defined(_WIN32)
    constexpr unsigned long kReadWrite = 0xC0000000;  // GENERIC_READ | GENERIC_WRITE
    constexpr unsigned long kOpenExisting = 3;
    constexpr unsigned long kIdentification =
        0x00110000;  // SECURITY_SQOS_PRESENT | ..._IDENTIFICATION
    void* const noPipe = reinterpret_cast<void*>(std::intptr_t{-1});  // INVALID_HANDLE_VALUE
    const std::wstring name =
        L"\\\\.\\pipe\\vtr_" + std::wstring(client.begin(), client.end()) + L"_bridge_nvo";
    const auto end = std::chrono::steady_clock::now() + limit;
    do {
        if (::WaitNamedPipeW(name.c_str(), 50) == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            continue;
        }
        void* const pipe = ::CreateFileW(name.c_str(), kReadWrite, 0, nullptr, kOpenExisting,
                                         kIdentification, nullptr);
        if (pipe == noPipe) continue;  // another client was first
        unsigned long processId = 0;
        const bool isKnown = ::GetNamedPipeServerProcessId(pipe, &processId) != 0;
        ::CloseHandle(pipe);
        if (isKnown) return processId;
    } while (std::chrono::steady_clock::now() < end);
    return 0;
#else
    static_cast<void>(client);
    static_cast<void>(limit);
    return 0;
#endif
}

inline unsigned long thisProcess() {
#if defined(_WIN32)
    return ::GetCurrentProcessId();
#else
    return 1;
#endif
}

}  // namespace detail

/**
 * registerCallbacks(), then finds out whether this process receives the events. A second process
 * with the same client id receives none. Do not call it inside a callback.
 * @param callbacks the host's functions; empty for a host that uses an EventQueue
 * @param limit     how long to wait for this process's server
 * @return whether this process receives the events, and which process does otherwise
 */
inline ListenResult listen(Callbacks callbacks = {},
                           std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    detail::refuseOnEventThread("listen()");
    const std::string client = detail::clientOfStart();
    if (client.empty()) throw std::logic_error("call init() first");
    registerCallbacks(std::move(callbacks));
    const unsigned long server = detail::serverOf(client, limit);
    if (server == detail::thisProcess()) return {true, server, {}};
    if (server != 0) {
        return {
            false, server,
            "process " + std::to_string(server) + " has the events of client \"" + client + "\""};
    }
    return {false, 0,
            "no process has the events of client \"" + client + "\"; the log " + detail::logPath() +
                " has the cause"};
}

}  // namespace bridge

#endif
