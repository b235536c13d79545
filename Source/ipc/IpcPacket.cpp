// The one writer of packets.
#include "ipc/IpcPacket.h"

#include <cstdio>
#include <cstring>

namespace {

static_assert(IPC_REPLY_LENGTH_OFFSET + sizeof(std::uint32_t) == IPC_HEADER_SIZE);
static_assert(sizeof(double) == 8, "the wire has binary64");

// Both ends run on the same little-endian machine, so numbers are copied unchanged.
template <typename Number>
unsigned char* put(unsigned char* to, Number number) {
    std::memcpy(to, &number, sizeof number);
    return to + sizeof number;
}

}  // namespace

std::size_t IpcField::size() const {
    switch (type_) {
        case IpcFieldType::Double:
            return sizeof double_;
        case IpcFieldType::Text:
            return ipcTextSize(text_.size());
        case IpcFieldType::I32:
        case IpcFieldType::Bool:
            break;
    }
    return sizeof i32_;
}

unsigned char* IpcField::write(unsigned char* to) const {
    if (type_ == IpcFieldType::Double) return put(to, double_);
    if (type_ != IpcFieldType::Text) return put(to, i32_);
    const std::size_t count = text_.size() + 1;
    to = put(to, static_cast<std::uint32_t>(count));
    std::memcpy(to, text_.data(), text_.size());
    to[text_.size()] = '\0';
    return to + count;
}

std::string IpcField::shown() const {
    if (type_ == IpcFieldType::Text) return std::string(text_);
    char number[512];
    if (type_ == IpcFieldType::Double) {
        std::snprintf(number, sizeof number, "%lf", double_);
    } else {
        std::snprintf(number, sizeof number, "%d", i32_);
    }
    return number;
}

IpcPacket ipcLayOut(std::uint32_t opcode, std::uint32_t replyLength, IpcFields fields) {
    IpcPacket packet;
    packet.size = IPC_HEADER_SIZE;
    for (const IpcField& field : fields) packet.size += field.size();
    if (packet.size > IPC_PACKET_SIZE_MAX) return packet;
    packet.bytes.reset(static_cast<unsigned char*>(xmemAlloc(packet.size)));
    if (packet.bytes == nullptr) return packet;
    unsigned char* to = packet.bytes.get();
    to = put(to, opcode);
    to = put(to, static_cast<std::uint32_t>(packet.size));
    to = put(to, replyLength);
    for (const IpcField& field : fields) to = field.write(to);
    return packet;
}
