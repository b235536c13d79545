// A local-socket server without Qt.
#include "StandinServer.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <utility>

#include "StandinDecode.h"
#include "ipc/IpcPacket.h"

namespace {

constexpr std::uint32_t kMaxPacket = 256u << 20;

void sleepMs(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void reply(StandinPipe& connection, const StandinScript& script, std::size_t length) {
    if (script.delayMs > 0) sleepMs(script.delayMs);
    const std::string bytes = standinReply(script, length);
    const std::size_t first = std::min(script.split.value_or(bytes.size()), bytes.size());
    connection.write(std::string_view(bytes).substr(0, first));
    if (first == bytes.size()) return;
    sleepMs(50);
    connection.write(std::string_view(bytes).substr(first));
}

// False if the program should end.
bool serveConnection(StandinPipe& connection, const StandinScript& script,
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

void standinServe(StandinPipe first, const std::string& serverName, const StandinScript& script,
                  int idleSeconds, const std::function<bool(std::string_view)>& onPacket) {
    const int idleMs = idleSeconds * 1000;
    StandinPipe next = std::move(first);
    while (next.isOpen()) {
        StandinPipe connection(std::move(next));
        if (!connection.accept(static_cast<std::uint32_t>(idleMs))) return;
        // Listens again at once, so the next client finds a server while this one is served.
        StandinPipe following = StandinPipe::listen(serverName);
        if (script.neverRead) {
            sleepMs(idleMs);
            return;
        }
        if (!serveConnection(connection, script, onPacket)) return;
        next = std::move(following);
    }
}
