// Packet assembly. The packets of a stream do not depend on how its bytes are delivered. Packets
// that are delivered whole get replies. A fatal length ends the process when its header is
// complete, after the packets before it.
//
// The first byte of the input is the number of delivery sizes that follow it. The sizes are used in
// a cycle. The rest is the stream.
#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
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

constexpr std::size_t kNowhere = std::string::npos;

struct Plan {
    std::vector<Packet> packets;
    std::size_t fatal = kNowhere;  // offset of the header with a fatal length
};

// The packets that the headers of a stream describe. Replies are short, to save memory.
Plan planOf(std::string& stream) {
    constexpr std::uint64_t kTooLong = (std::uint64_t{1} << 31) + kHeader;
    Plan plan;
    std::size_t at = 0;
    while (stream.size() - at >= kHeader) {
        const std::uint32_t length = numberAt(stream, at + 4);
        if (length < kHeader || length >= kTooLong) {
            plan.fatal = at;
            break;
        }
        std::memset(stream.data() + at + 9, 0, 3);
        if (length > stream.size() - at) break;
        plan.packets.push_back({at, length, numberAt(stream, at + 8)});
        at += length;
    }
    return plan;
}

// The offsets at which deliveries end.
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

// The maximum capacity of a buffer for the bytes so far: a growing buffer of Qt has twice its size.
int roomFor(std::size_t arrived) { return static_cast<int>(2 * arrived + 64); }

// Delivers the stream up to its end or to a fatal length.
void deliver(IpcConnectionInfo& info, FakeSocket& socket, const std::string& stream,
             const std::vector<std::size_t>& ends) {
    std::size_t start = 0;
    for (const std::size_t end : ends) {
        socket.waiting.append(stream, start, end - start);
        start = end;
        ipcReadCommand(&info, receive);
        std::size_t dispatched = 0;
        for (const std::string& packet : received) dispatched += packet.size();
        const std::size_t rest = end - dispatched;
        check(info.held() + socket.bytesAvailable() == static_cast<qint64>(rest),
              "what came of a packet that is not whole waits");
        check((info.packetLen != 0) == (rest >= kHeader), "a whole header begins a packet");
        check(info.packetLen == 0 || socket.bytesAvailable() == 0, "a packet takes what came");
        check(info.buffer.capacity() <= roomFor(end), "memory follows what arrived");
    }
}

std::jmp_buf afterFatalBreak;

// Whether the work reaches a fatal break, which would end the process. longjmp() leaves the work
// there, so no object on the stack may need a destructor.
template <typename Work>
bool breaksFatally(Work work) {
    if (setjmp(afterFatalBreak) != 0) return true;
    work();
    return false;
}

void checkReceived(const std::string& stream, const std::vector<Packet>& packets) {
    check(received.size() == packets.size(), "as many packets as headers");
    for (std::size_t i = 0; i < packets.size(); ++i) {
        check(received[i] == stream.substr(packets[i].start, packets[i].size), "a packet's bytes");
    }
}

void checkDelivery(const std::string& stream, const Plan& plan,
                   const std::vector<std::size_t>& ends) {
    static const std::string serverName = "vtr_fuzz_nvo";
    received.clear();
    FakeSocket socket;
    IpcConnectionInfo info(&socket, &serverName);
    const bool fatal = breaksFatally([&] { deliver(info, socket, stream, ends); });
    check(fatal == (plan.fatal != kNowhere), "a length that is fatal, and only that, ends it");
    checkReceived(stream, plan.packets);
    std::size_t replies = 0;
    for (const Packet& packet : plan.packets) {
        const bool atOnce = deliveryOf(ends, packet.start + kHeader) ==
                            deliveryOf(ends, packet.start + packet.size);
        if (atOnce) replies += packet.reply;
    }
    check(socket.written == std::string(replies, 'r'), "the replies of packets that came at once");
}

void checkStream(std::string stream, Plan plan, const std::string& sizes) {
    checkDelivery(stream, plan, deliveries(sizes, stream.size()));
    if (plan.fatal == kNowhere) return;
    stream.resize(plan.fatal + kHeader - 1);  // an incomplete header
    plan.fatal = kNowhere;
    checkDelivery(stream, plan, deliveries(sizes, stream.size()));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    logIntoNothing();
    logCallAtFatalBreak([] { std::longjmp(afterFatalBreak, 1); });
    if (size == 0) return 0;
    const std::string_view input = textOf(data + 1, size - 1);
    const std::size_t count = std::min<std::size_t>(data[0] % 16, input.size());
    std::string stream(input.substr(count));
    const Plan plan = planOf(stream);
    checkStream(stream, plan, std::string(input.substr(0, count)));
    checkStream(stream, plan, "");
    return 0;
}
