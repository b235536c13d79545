#ifndef IPC_IPCPACKET_H
#define IPC_IPCPACKET_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>

#include "xpl/Xmem.h"

// Packets of the product's local sockets: a header of three little-endian 32-bit numbers (opcode,
// length of the whole packet, length of the expected reply), then the fields without padding:
//
//     i32     4 bytes, two's complement
//     bool    4 bytes, of which receivers read the lowest; written as 0 or 1
//     double  8 bytes, IEEE 754 binary64, not aligned
//     text    its length with the NUL as 4 bytes, then UTF-8 bytes and the NUL

constexpr std::size_t IPC_HEADER_SIZE = 12;
constexpr std::size_t IPC_OPCODE_OFFSET = 0;
constexpr std::size_t IPC_LENGTH_OFFSET = 4;
constexpr std::size_t IPC_REPLY_LENGTH_OFFSET = 8;

enum class IpcFieldType { I32, Bool, Double, Text };

// One field of a packet. A text is a view, which must stay valid until the packet is built.
class IpcField {
 public:
    IpcField(std::int32_t value) : type_(IpcFieldType::I32), i32_(value) {}
    IpcField(bool value) : type_(IpcFieldType::Bool), i32_(value ? 1 : 0) {}
    IpcField(double value) : type_(IpcFieldType::Double), double_(value) {}
    IpcField(const char* value) : type_(IpcFieldType::Text), text_(value) {}

    // Size of the field in bytes.
    std::size_t size() const;

    // Writes the field and returns the address after it.
    unsigned char* write(unsigned char* to) const;

    // The value as log lines show it: "%d", "%lf" or "%s".
    std::string shown() const;

 private:
    IpcFieldType type_;
    std::int32_t i32_ = 0;
    double double_ = 0;
    std::string_view text_;
};

using IpcFields = std::initializer_list<IpcField>;

// Size of a text of this length. Sizes are summed in size_t and compared with the limit before they
// are cut to 32 bits.
constexpr std::size_t ipcTextSize(std::size_t length) {
    return sizeof(std::uint32_t) + length + sizeof '\0';
}

// The longest packet: senders and receivers use a signed 32-bit length.
constexpr std::size_t IPC_PACKET_SIZE_MAX = std::numeric_limits<std::int32_t>::max();

// A packet, in a buffer of exactly its length.
struct IpcPacket {
    XmemBytes bytes;  // null when out of memory, or when the packet would be too long
    std::size_t size = 0;
};

IpcPacket ipcLayOut(std::uint32_t opcode, std::uint32_t replyLength, IpcFields fields);

#endif
