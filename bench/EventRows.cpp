// Events, from the bytes in a pipe to the call of the decoder.
#include <uv.h>

#include <private/qthread_p.h>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "Bench.h"
#include "FloorServer.h"
#include "ipc/IpcName.h"
#include "ipc/IpcServer.h"
#include "support/EventPackets.h"
#include "support/WindowsForTests.h"

namespace {

constexpr int kManyConnections = 64;
constexpr int kInstances = kManyConnections + 8;
constexpr double kThroughputAim = 1 / 0.9;  // times the time per packet
constexpr double kLatencyAim = 1.0;

// The quantile of latencies that counts: load on the machine hardly affects the lowest tenth.
constexpr double kLatencyQuantile = 0.1;
constexpr int kWarmUps = 10;  // the first operations of a round are slower
constexpr int kTimes = 50;
constexpr std::size_t kStreamBytes = 65536;
constexpr std::size_t kBurstPackets = 16;

// Counts packets on the server's thread. Another thread waits for a count.
class Counter {
 public:
    void add() {
        if (count_.fetch_add(1, std::memory_order_relaxed) + 1 ==
            wanted_.load(std::memory_order_relaxed)) {
            ::SetEvent(reached_);
        }
    }

    // Call before the packets are sent.
    void expect(std::int64_t more) {
        wanted_.store(count_.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
    }

    void wait() {
        benchCheck(::WaitForSingleObject(reached_, 60000) == WAIT_OBJECT_0, "packets are missing");
    }

 private:
    HANDLE reached_ = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    std::atomic<std::int64_t> count_{0};
    std::atomic<std::int64_t> wanted_{0};
};

struct Server {
    virtual ~Server() = default;
    Counter counter;
};

// The library's decoder is a plain function.
Counter* libraryCounter = nullptr;

class LibraryServer final : public Server {
 public:
    explicit LibraryServer(const std::string& name) {
        libraryCounter = &counter;
        ipcServerInit(&thread_, name,
                      [](QLocalSocket*, const std::uint8_t*, std::int32_t, void*, std::int32_t) {
                          libraryCounter->add();
                          return true;
                      });
    }
    ~LibraryServer() override { ipcServerFini(&thread_); }

 private:
    IpcServerThread* thread_ = nullptr;
};

// A simple server with QLocalServer.
class QtServer final : public Server {
    class Thread final : public QThread {
     public:
        Thread(const std::string& name, Counter& counter) : name_(name), counter_(counter) {}

     protected:
        void run() override {
            QThreadData::get2(this)->requiresCoreApplication = false;
            QLocalServer server;
            QObject::connect(
                &server, &QLocalServer::newConnection, &server, [&] { take(server); },
                Qt::DirectConnection);
            benchCheck(server.listen(QString::fromStdString(name_)), "QLocalServer is deaf");
            exec();
        }

     private:
        void take(QLocalServer& server) {
            QLocalSocket* const socket = server.nextPendingConnection();
            const auto splitter = std::make_shared<PacketSplitter>();
            QObject::connect(
                socket, &QLocalSocket::readyRead, socket,
                [this, socket, splitter] {
                    const QByteArray bytes = socket->readAll();
                    splitter->feed(bytes.constData(), static_cast<std::size_t>(bytes.size()),
                                   [this](std::string_view) { counter_.add(); });
                },
                Qt::DirectConnection);
            QObject::connect(socket, &QLocalSocket::disconnected, socket,
                             &QLocalSocket::deleteLater);
        }

        std::string name_;
        Counter& counter_;
    };

 public:
    explicit QtServer(const std::string& name) : thread_(name, counter) { thread_.start(); }
    ~QtServer() override {
        thread_.quit();
        thread_.wait();
    }

 private:
    Thread thread_;
};

class UvServer final : public Server {
    struct Connection {
        uv_pipe_t pipe;
        PacketSplitter splitter;
        UvServer* server;
        char bytes[65536];
    };

 public:
    explicit UvServer(const std::string& name) {
        uv_loop_init(&loop_);
        uv_async_init(&loop_, &stop_, [](uv_async_t* async) { uv_stop(async->loop); });
        uv_pipe_init(&loop_, &listener_, 0);
        uv_pipe_pending_instances(&listener_, 8);
        listener_.data = this;
        const std::string path = "\\\\.\\pipe\\" + name;
        benchCheck(uv_pipe_bind(&listener_, path.c_str()) == 0, "libuv does not bind");
        benchCheck(uv_listen(reinterpret_cast<uv_stream_t*>(&listener_), 64, connected) == 0,
                   "libuv does not listen");
        thread_ = std::thread([this] { uv_run(&loop_, UV_RUN_DEFAULT); });
    }
    ~UvServer() override {
        uv_async_send(&stop_);
        thread_.join();
        uv_walk(
            &loop_,
            [](uv_handle_t* handle, void*) {
                if (!uv_is_closing(handle)) uv_close(handle, nullptr);
            },
            nullptr);
        uv_run(&loop_, UV_RUN_DEFAULT);
        uv_loop_close(&loop_);
    }

 private:
    static void connected(uv_stream_t* listener, int) {
        UvServer* const self = static_cast<UvServer*>(listener->data);
        self->connections_.push_back(std::make_unique<Connection>());
        Connection& connection = *self->connections_.back();
        connection.server = self;
        uv_pipe_init(&self->loop_, &connection.pipe, 0);
        connection.pipe.data = &connection;
        uv_stream_t* const stream = reinterpret_cast<uv_stream_t*>(&connection.pipe);
        if (uv_accept(listener, stream) == 0) uv_read_start(stream, room, arrived);
    }

    static void room(uv_handle_t* handle, std::size_t, uv_buf_t* buffer) {
        Connection& connection = *static_cast<Connection*>(handle->data);
        *buffer = uv_buf_init(connection.bytes, sizeof connection.bytes);
    }

    static void arrived(uv_stream_t* stream, ssize_t count, const uv_buf_t* buffer) {
        Connection& connection = *static_cast<Connection*>(stream->data);
        if (count < 0) {
            uv_close(reinterpret_cast<uv_handle_t*>(stream), nullptr);
            return;
        }
        connection.splitter.feed(
            buffer->base, static_cast<std::size_t>(count),
            [&connection](std::string_view) { connection.server->counter.add(); });
    }

    uv_loop_t loop_;
    uv_async_t stop_;
    uv_pipe_t listener_;
    std::vector<std::unique_ptr<Connection>> connections_;
    std::thread thread_;
};

class OverlappedServer final : public Server {
 public:
    explicit OverlappedServer(const std::string& name)
        : server_(name, kInstances, [this](std::string_view) { counter.add(); }) {}

 private:
    FloorServer server_;
};

std::string somePacket() { return appDisplayedPacket("Nougat64", "com.example.app"); }

std::string packets(std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += somePacket();
    return all;
}

std::size_t streamPackets() { return kStreamBytes / somePacket().size(); }

// A server and its connections.
class Talk {
 public:
    Talk(const char* name, std::unique_ptr<Server> (*make)(const std::string& name),
         int connections)
        : server_(make(fullName(name))) {
        while (!ipcNameIsServed(fullName(name))) ::Sleep(5);
        for (int i = 0; i < connections; ++i) pipes_.push_back(floorConnect(fullName(name)));
    }
    ~Talk() {
        for (void* pipe : pipes_) ::CloseHandle(pipe);
    }
    Talk(const Talk&) = delete;
    Talk& operator=(const Talk&) = delete;

    // Sends these packets repeatedly on each connection, and waits until all have arrived.
    void send(const std::string& bytes, std::size_t count, std::int64_t times) {
        const auto each = static_cast<std::int64_t>(count * pipes_.size());
        server_->counter.expect(each * times);
        for (std::int64_t i = 0; i < times; ++i) {
            for (void* pipe : pipes_) write(pipe, bytes);
        }
        server_->counter.wait();
    }

 private:
    static std::string fullName(const char* name) {
        return std::string("vtr_bench_") + name + "_" + std::to_string(::GetCurrentProcessId());
    }

    static void write(void* pipe, const std::string& bytes) {
        DWORD done = 0;
        ::WriteFile(pipe, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr);
        benchCheck(done == bytes.size(), "cannot write to a server");
    }

    std::unique_ptr<Server> server_;
    std::vector<void*> pipes_;
};

template <typename Kind>
std::unique_ptr<Server> make(const std::string& name) {
    return std::make_unique<Kind>(name);
}

// The time until `count` packets, sent in one write on each connection, have arrived.
template <typename Kind>
Side side(const char* title, const char* name, double aim, int connections, std::size_t count) {
    const auto talk = std::make_shared<Talk>(name, make<Kind>, connections);
    const std::string bytes = packets(count);
    return {title, aim,
            [=](std::int64_t times) { return timed([&] { talk->send(bytes, count, times); })(1); }};
}

std::vector<Side> eventSides(int connections, std::size_t count) {
    return {side<LibraryServer>("library", "library", 0, connections, count),
            side<QtServer>("QLocalServer", "qt", kThroughputAim, connections, count),
            side<UvServer>("libuv", "uv", 0, connections, count),
            side<OverlappedServer>("floor: overlapped reads", "floor", 0, connections, count)};
}

// Pins this process to its last core. Otherwise latencies depend on which cores the scheduler
// chooses for sender and server, and on the wake-up time of idle cores.
class OneCore {
 public:
    OneCore() {
        DWORD_PTR system = 0;
        benchCheck(::GetProcessAffinityMask(::GetCurrentProcess(), &all_, &system) != FALSE,
                   "no affinity");
        DWORD_PTR last = all_;
        while ((last & (last - 1)) != 0) last &= last - 1;
        benchCheck(::SetProcessAffinityMask(::GetCurrentProcess(), last) != FALSE, "not pinned");
    }
    ~OneCore() { ::SetProcessAffinityMask(::GetCurrentProcess(), all_); }
    OneCore(const OneCore&) = delete;
    OneCore& operator=(const OneCore&) = delete;

 private:
    DWORD_PTR all_ = 0;
};

template <typename Kind>
Side latencySide(const char* title, const char* name, double aim) {
    const auto talk = std::make_shared<Talk>(name, make<Kind>, 1);
    const std::string packet = somePacket();
    return {title, aim, nullptr, [=](std::vector<double>& times) {
                const OneCore pinned;
                const auto run = timed([&] { talk->send(packet, 1, 1); });
                run(kWarmUps);
                for (int i = 0; i < kTimes; ++i) times.push_back(run(1));
            }};
}

std::vector<Side> latencySides() {
    return {latencySide<LibraryServer>("library", "library", 0),
            latencySide<QtServer>("QLocalServer", "qt", kLatencyAim),
            latencySide<UvServer>("libuv", "uv", 0),
            latencySide<OverlappedServer>("floor: overlapped reads", "floor", 0)};
}

}  // namespace

void addEventRows(Rows& rows) {
    rows.push_back({"events/stream", "take in an event that streams on one connection",
                    [] { return eventSides(1, streamPackets()); },
                    static_cast<double>(streamPackets())});
    rows.push_back({"events/64", "take in an event, 64 connections sending 16 at a time",
                    [] { return eventSides(kManyConnections, kBurstPackets); },
                    static_cast<double>(kManyConnections * kBurstPackets)});
    rows.push_back({"events/latency", "from sending one event to the decoder", latencySides, 1,
                    kLatencyQuantile});
}
