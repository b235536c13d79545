// Packet assembly: however a stream of bytes is delivered, the packets are those that its headers
// describe, and the replies those of packets that came whole within one delivery.
//
// The first byte counts the sizes of deliveries that follow it, used over and over; the rest is the
// stream.
#include <cstring>
#include <string>
#include <vector>

#include "Check.h"
#include "QuietLog.h"
#include "ipc/IpcConnection.h"
#include "support/FakeSocket.h"

namespace {

constexpr std::size_t kHeader = 12;

std::vector<std::string> received;

bool receive(QLocalSocket*, const std::uint8_t* packet, std::int32_t length, void* reply,
             std::int32_t replyLength) {
    received.emplace_back(textOf(packet, static_cast<std::size_t>(length)));
    if (replyLength > 0) std::memset(reply, 'r', static_cast<std::size_t>(replyLength));
    return true;
}

std::uint32_t numberAt(const std::string& bytes, std::size_t at) {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes.data() + at, sizeof number);
    return number;
}

struct Packet {
    std::size_t start;
    std::size_t size;
    std::size_t reply;
};

// The packets of a stream, which ends before a length that is fatal, and whose replies are kept
// short: they are memory.
std::vector<Packet> packetsOf(std::string& stream) {
    std::vector<Packet> packets;
    std::size_t at = 0;
    while (stream.size() - at >= kHeader) {
        const std::uint32_t length = numberAt(stream, at + 4);
        if (static_cast<std::int32_t>(length - kHeader) < 0) {
            stream.resize(at);
            break;
        }
        std::memset(stream.data() + at + 9, 0, 3);
        if (length > stream.size() - at) break;
        packets.push_back({at, length, numberAt(stream, at + 8)});
        at += length;
    }
    return packets;
}

// Ends of the deliveries.
std::vector<std::size_t> deliveries(const std::string& sizes, std::size_t total) {
    std::vector<std::size_t> ends;
    for (std::size_t end = 0, i = 0; end < total; ++i) {
        const std::size_t size =
            sizes.empty() ? total : static_cast<unsigned char>(sizes[i % sizes.size()]) + 1u;
        end = std::min(total, end + size);
        ends.push_back(end);
    }
    return ends;
}

std::size_t deliveryOf(const std::vector<std::size_t>& ends, std::size_t needed) {
    std::size_t i = 0;
    while (ends[i] < needed) ++i;
    return i;
}

void checkDelivery(const std::string& stream, const std::vector<Packet>& packets,
                   const std::vector<std::size_t>& ends) {
    static const std::string serverName = "vtr_fuzz_nvo";
    received.clear();
    FakeSocket socket;
    IpcConnectionInfo info(&socket, &serverName);
    std::size_t start = 0;
    for (const std::size_t end : ends) {
        socket.waiting.append(stream, start, end - start);
        start = end;
        ipcReadCommand(&info, receive);
        check(info.buffer.size() <= static_cast<int>(stream.size()), "memory follows what arrived");
    }
    std::size_t replies = 0;
    check(received.size() == packets.size(), "as many packets as headers");
    for (std::size_t i = 0; i < packets.size(); ++i) {
        const Packet& packet = packets[i];
        check(received[i] == stream.substr(packet.start, packet.size), "a packet's bytes");
        const bool atOnce = deliveryOf(ends, packet.start + kHeader) ==
                            deliveryOf(ends, packet.start + packet.size);
        if (atOnce) replies += packet.reply;
    }
    check(socket.written == std::string(replies, 'r'), "the replies of packets that came at once");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    logIntoNothing();
    if (size == 0) return 0;
    const std::string_view input = textOf(data + 1, size - 1);
    const std::size_t count = std::min<std::size_t>(data[0] % 16, input.size());
    std::string stream(input.substr(count));
    const std::vector<Packet> packets = packetsOf(stream);
    checkDelivery(stream, packets, deliveries(std::string(input.substr(0, count)), stream.size()));
    checkDelivery(stream, packets, deliveries("", stream.size()));
    return 0;
}
