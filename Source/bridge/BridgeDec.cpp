// Decodes event packets.
#include "bridge/BridgeDec.h"

#include <bridge/bridge.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <tuple>

#include "bridge/BridgeIpcClbk.h"
#include "ipc/IpcEvent.h"
#include "ipc/IpcPacket.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kLog{XlogTag::BRIDGE, "Source/bridge/BridgeDec"};

// Opcode and length only; yet the fields always start after a whole header.
constexpr std::int32_t kMinLength = 8;

// A text inside the packet. The host reads up to the NUL; the count in the packet determines where
// the next field starts.
struct Text {
    const char* bytes = nullptr;
    std::uint32_t count = 0;
    operator const char*() const { return bytes; }
};

// A byte. The host gets 0 or 1.
struct Flag {
    std::uint8_t byte = 0;
    operator bridge_bool() const { return byte != 0 ? 1 : 0; }
};

// Reads the fields of a packet in order. From the first field that is not inside the packet, all
// are invalid and read as zeros.
class Fields {
 public:
    Fields(const std::uint8_t* packet, std::size_t length) : packet_(packet), length_(length) {}

    bool valid() const { return valid_; }

    std::int32_t number() { return take<std::int32_t>(); }
    double real() { return take<double>(); }
    Flag flag() { return {take<std::uint8_t>()}; }

    // In addition to its counted bytes, a text needs a NUL before the packet's end.
    Text text() {
        Text text;
        text.count = take<std::uint32_t>();
        const std::size_t left = length_ - at_;
        if (!valid_ || text.count > left || std::memchr(packet_ + at_, '\0', left) == nullptr) {
            valid_ = false;
            return {};
        }
        text.bytes = reinterpret_cast<const char*>(packet_ + at_);
        at_ += text.count;
        return text;
    }

 private:
    template <typename Value>
    Value take() {
        Value value{};
        if (valid_ && at_ <= length_ && length_ - at_ >= sizeof value) {
            std::memcpy(&value, packet_ + at_, sizeof value);
            at_ += sizeof value;
        } else {
            valid_ = false;
            at_ = length_;
        }
        return value;
    }

    const std::uint8_t* packet_;
    std::size_t length_;
    std::size_t at_ = IPC_HEADER_SIZE;
    bool valid_ = true;
};

// Reads the next field, for an invoker's parameter of this type.
Text fieldFor(const char*, Fields& fields) { return fields.text(); }
std::int32_t fieldFor(bridge_i32, Fields& fields) { return fields.number(); }
double fieldFor(double, Fields& fields) { return fields.real(); }
Flag fieldFor(bridge_bool, Fields& fields) { return fields.flag(); }

// Reads the fields for all parameters of an invoker. The braces guarantee the order.
template <typename... Parameters>
auto fieldsFor(void (*)(Parameters...), Fields& fields) {
    return std::tuple{fieldFor(Parameters{}, fields)...};
}

template <typename... Parameters>
constexpr bool takesFields(void (*)(Parameters...), const IpcEvent& event) {
    return ipcTakesFields<Parameters...>(event);
}

// Formats fields for the log line of a call. Does not allocate, so that events reach the host when
// memory is short.
class Shown {
 public:
    template <typename... Values>
    explicit Shown(const std::tuple<Values...>& values) {
        std::apply([this](const auto&... value) { (this->show(value), ...); }, values);
    }

    const char* text() const { return text_; }

 private:
    static constexpr std::size_t kLongest = sizeof ", -" + 309 + sizeof ".000000";  // a double

    void show(const Text& text) {
        added(std::snprintf(end(), room(), "%s%p(%u)", comma(),
                            static_cast<const void*>(text.bytes), text.count));
    }
    void show(const Flag& flag) { added(std::snprintf(end(), room(), "%s%d", comma(), flag.byte)); }
    void show(std::int32_t number) { added(std::snprintf(end(), room(), "%s%d", comma(), number)); }
    void show(double number) { added(std::snprintf(end(), room(), "%s%lf", comma(), number)); }

    const char* comma() const { return length_ == 0 ? "" : ", "; }
    char* end() { return text_ + length_; }
    std::size_t room() const { return sizeof text_ - length_; }
    void added(int length) { length_ += static_cast<std::size_t>(length); }

    char text_[std::size(IpcEvent{}.fields) * kLongest] = "";
    std::size_t length_ = 0;
};

// A decoder per event: reads the fields, and calls the invoker only if all are valid.
#define BRIDGE_DECODER(opcode, event, callback, slot, ...)                                   \
    bool decode##event(Fields& fields) {                                                     \
        static_assert(takesFields(callback##Clbk, {opcode, __VA_ARGS__}), "as in bridge.h"); \
        const auto values = fieldsFor(callback##Clbk, fields);                               \
        if (!fields.valid()) return false;                                                   \
        XLOG_D(kLog, #callback " (%s)\n", Shown(values).text());                             \
        std::apply(callback##Clbk, values);                                                  \
        XLOG_D(kLog, #callback " returning\n");                                              \
        return true;                                                                         \
    }
IPC_EVENTS(BRIDGE_DECODER)
#undef BRIDGE_DECODER

using Decoder = bool (*)(Fields& fields);

// Null for an unknown opcode.
Decoder decoderOf(std::int32_t opcode) {
    switch (opcode) {
#define BRIDGE_DECODER_CASE(number, event, ...) \
    case number:                                \
        return decode##event;
        IPC_EVENTS(BRIDGE_DECODER_CASE)
#undef BRIDGE_DECODER_CASE
        default:
            return nullptr;
    }
}

}  // namespace

bool bridgeDecode(QLocalSocket* /*socket*/, const std::uint8_t* buffer, std::int32_t length,
                  void* /*reply*/, std::int32_t /*replyLength*/) {
    if (length < kMinLength) {
        XLOG_E(kLog, "%s: invalid bufferLen: %d", "bridgeDecode", length);
        return false;
    }
    std::int32_t opcode = 0;
    std::memcpy(&opcode, buffer + IPC_OPCODE_OFFSET, sizeof opcode);
    const Decoder decode = decoderOf(opcode);
    if (decode == nullptr) {
        XLOG_E(kLog, "%s: invalid opcode: %d", "bridgeDecode", opcode);
        return false;
    }
    Fields fields(buffer, static_cast<std::size_t>(length));
    if (!decode(fields)) {
        XLOG_E(kLog, "%s: malformed packet, opcode = %d, len = %d", "bridgeDecode", opcode, length);
        return false;
    }
    return true;
}
