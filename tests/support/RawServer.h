#ifndef TESTS_RAWSERVER_H
#define TESTS_RAWSERVER_H

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

// One end of a named pipe.
class RawPipe {
 public:
    explicit RawPipe(void* handle) : handle_(handle) {}
    ~RawPipe();
    RawPipe(const RawPipe&) = delete;
    RawPipe& operator=(const RawPipe&) = delete;

    // Reads up to this many bytes; fewer when the peer closes.
    std::string read(std::size_t count);
    // Reads until the peer closes.
    std::string readAll();
    bool write(std::string_view bytes);
    void close();

 private:
    void* handle_;
};

// A server for local sockets that shares no code with the library. Its own thread serves the
// connections one after another with the given function.
class RawServer {
 public:
    using Serve = std::function<void(RawPipe& pipe)>;

    RawServer(const std::string& name, Serve serve, std::size_t bufferSize = 65536);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    int served() const { return served_; }

 private:
    void* listen() const;
    void run(void* first);

    std::wstring path_;
    Serve serve_;
    unsigned long bufferSize_;
    std::atomic<bool> stop_{false};
    std::atomic<bool> ended_{false};
    std::atomic<int> served_{0};
    std::thread thread_;
};

// A server that closes as soon as a client arrives, without accepting it.
class LeavingServer {
 public:
    explicit LeavingServer(const std::string& name);
    ~LeavingServer();
    LeavingServer(const LeavingServer&) = delete;
    LeavingServer& operator=(const LeavingServer&) = delete;

    // Whether a client arrived.
    bool met() const { return met_; }

 private:
    std::atomic<bool> stop_{false};
    std::atomic<bool> met_{false};
    std::thread thread_;
};

// Connects to a server as a client. Null if there is no server, or no free instance.
void* connectRaw(const std::string& name);

// The same, but waits some seconds for a free instance.
void* connectWhenFree(const std::string& name);

#endif
