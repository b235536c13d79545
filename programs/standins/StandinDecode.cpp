#include "StandinDecode.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "ipc/IpcPacket.h"
#include "mim/client/MimEnc.h"
#include "plr/client/PlrEnc.h"
#include "shared/JsonValue.h"

namespace {

// Reads consecutive fields of a packet and never past its end.
class FieldReader {
 public:
    explicit FieldReader(std::string_view payload) : rest_(payload) {}

    std::optional<JsonValue> read(IpcFieldType type) {
        switch (type) {
            case IpcFieldType::I32:
                return number<std::int32_t>();
            case IpcFieldType::Bool:
                return boolean();
            case IpcFieldType::Double:
                return number<double>();
            case IpcFieldType::Text:
                break;
        }
        return text();
    }

    bool atEnd() const { return rest_.empty(); }

 private:
    template <typename Number>
    std::optional<JsonValue> number() {
        Number value;
        if (!take(&value, sizeof value)) return std::nullopt;
        return JsonValue(value);
    }

    // Only the lowest byte is significant.
    std::optional<JsonValue> boolean() {
        unsigned char bytes[4];
        if (!take(bytes, sizeof bytes)) return std::nullopt;
        return JsonValue(bytes[0] != 0);
    }

    std::optional<JsonValue> text() {
        std::uint32_t count = 0;
        if (!take(&count, sizeof count) || count == 0 || count > rest_.size()) return std::nullopt;
        if (rest_[count - 1] != '\0') return std::nullopt;
        const std::string value(rest_.substr(0, count - 1));
        rest_.remove_prefix(count);
        return JsonValue(value);
    }

    bool take(void* to, std::size_t size) {
        if (rest_.size() < size) return false;
        std::memcpy(to, rest_.data(), size);
        rest_.remove_prefix(size);
        return true;
    }

    std::string_view rest_;
};

std::optional<JsonArray> readArguments(const IpcRequest& request, std::string_view payload) {
    FieldReader reader(payload);
    JsonArray arguments;
    for (std::size_t i = 0; i < request.fieldCount; ++i) {
        std::optional<JsonValue> value = reader.read(request.fields[i]);
        if (!value) return std::nullopt;
        arguments.push_back(std::move(*value));
    }
    return reader.atEnd() ? std::optional(std::move(arguments)) : std::nullopt;
}

std::string hexOf(std::string_view bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string unreadable(std::string_view packet, StandinFormat format) {
    const std::string hex = hexOf(packet);
    return format == StandinFormat::Json ? JsonValue(JsonObject{{"unreadable", hex}}).inOneLine()
                                         : "unreadable " + hex;
}

}  // namespace

StandinRequests standinPlayerRequests() { return {PLR_REQUESTS, PLR_REQUEST_COUNT}; }

StandinRequests standinManagerRequests() { return {MIM_REQUESTS, MIM_REQUEST_COUNT}; }

StandinHeader standinHeader(std::string_view packet) {
    StandinHeader header;
    std::memcpy(&header.opcode, packet.data() + IPC_OPCODE_OFFSET, 4);
    std::memcpy(&header.length, packet.data() + IPC_LENGTH_OFFSET, 4);
    std::memcpy(&header.replyLength, packet.data() + IPC_REPLY_LENGTH_OFFSET, 4);
    return header;
}

const IpcRequest* standinFindRequest(std::string_view packet, StandinRequests requests) {
    if (packet.size() < IPC_HEADER_SIZE) return nullptr;
    const std::uint32_t opcode = standinHeader(packet).opcode;
    const auto* const end = requests.first + requests.count;
    const auto* const found =
        std::find_if(requests.first, end,
                     [opcode](const IpcRequest& request) { return request.opcode == opcode; });
    return found == end ? nullptr : found;
}

std::string standinDescribe(std::string_view packet, StandinRequests requests,
                            StandinFormat format) {
    const IpcRequest* const request = standinFindRequest(packet, requests);
    if (request == nullptr) return unreadable(packet, format);
    const StandinHeader header = standinHeader(packet);
    const std::optional<JsonArray> arguments =
        readArguments(*request, packet.substr(IPC_HEADER_SIZE));
    if (!arguments) return unreadable(packet, format);
    if (format == StandinFormat::Json) {
        const JsonObject object{{"request", request->name},
                                {"opcode", static_cast<long long>(header.opcode)},
                                {"replyLength", static_cast<long long>(header.replyLength)},
                                {"arguments", *arguments}};
        return JsonValue(object).inOneLine();
    }
    const std::string list = JsonValue(*arguments).inOneLine();
    return std::string(request->name) + "(" + list.substr(1, list.size() - 2) + ")";
}
