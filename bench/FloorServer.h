#ifndef BENCH_FLOORSERVER_H
#define BENCH_FLOORSERVER_H

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// Splits the bytes of a connection into packets, for servers of the other sides.
class PacketSplitter {
 public:
    // Calls visit(packet) for each complete packet.
    template <typename Visit>
    void feed(const char* bytes, std::size_t count, Visit visit) {
        if (!rest_.empty()) {
            rest_.append(bytes, count);
            const std::size_t used = split(rest_, visit);
            rest_.erase(0, used);
            return;
        }
        const std::string_view all(bytes, count);
        rest_.assign(all.substr(split(all, visit)));
    }

    void clear() { rest_.clear(); }

 private:
    template <typename Visit>
    static std::size_t split(std::string_view bytes, Visit visit) {
        constexpr std::size_t kHeader = 12;
        std::size_t at = 0;
        while (bytes.size() - at >= kHeader) {
            std::uint32_t length = 0;
            std::memcpy(&length, bytes.data() + at + 4, sizeof length);
            if (bytes.size() - at < length) break;
            visit(bytes.substr(at, length));
            at += length;
        }
        return at;
    }

    std::string rest_;
};

// A server with overlapped calls and a completion port, on one thread. The number of pipe instances
// is constant. Requests with a reply get zeros.
class FloorServer {
 public:
    using OnPacket = std::function<void(std::string_view packet)>;

    FloorServer(const std::string& name, int instances, OnPacket onPacket);
    ~FloorServer();
    FloorServer(const FloorServer&) = delete;
    FloorServer& operator=(const FloorServer&) = delete;

 private:
    struct Instance;

    void run();
    void listen(Instance& instance);
    void take(Instance& instance, std::size_t count);

    OnPacket onPacket_;
    void* port_;
    std::vector<std::unique_ptr<Instance>> instances_;
    std::thread thread_;
};

// Connects, and waits while the server is busy.
void* floorConnect(const std::string& name);

#endif
