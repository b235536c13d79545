#include "support/MalformedPackets.h"

#include <cstdint>
#include <cstring>
#include <optional>

#include "support/EventPackets.h"
#include "support/LogLines.h"

namespace {

// Null for an unknown opcode.
const KnownEvent* findEvent(std::uint32_t opcode) {
    for (const KnownEvent& event : knownEvents()) {
        if (event.opcode == opcode) return &event;
    }
    return nullptr;
}

std::string fieldOf(char type, std::size_t offset) {
    const std::string text = "text" + std::to_string(offset);
    switch (type) {
        case 't':
            return textField(text);
        case 'i':
            return bytesOf(static_cast<std::int32_t>(offset) + 10);
        case 'd':
            return bytesOf(62.5);
        default:
            return std::string(1, '\1');
    }
}

template <typename Number>
std::optional<Number> numberAt(const std::string& packet, std::size_t at) {
    Number number{};
    if (at + sizeof number > packet.size()) return std::nullopt;
    std::memcpy(&number, packet.data() + at, sizeof number);
    return number;
}

// Reads a field as a call shows it and moves `at` after it. Nothing if the field exceeds the
// packet.
std::optional<std::string> take(const std::string& packet, char type, std::size_t& at) {
    if (type == 'b') {
        const auto byte = numberAt<unsigned char>(packet, at);
        at += 1;
        return byte ? std::optional(*byte != 0 ? "1" : "0") : std::nullopt;
    }
    if (type == 'd') {
        const auto number = numberAt<double>(packet, at);
        at += 8;
        return number ? std::optional(std::to_string(*number)) : std::nullopt;
    }
    const auto number = numberAt<std::uint32_t>(packet, at);
    at += 4;
    if (!number) return std::nullopt;
    if (type == 'i') return std::to_string(static_cast<std::int32_t>(*number));
    const std::size_t start = at;
    at += *number;
    const std::size_t end = packet.find('\0', start);
    if (at > packet.size() || end == std::string::npos) return std::nullopt;
    return packet.substr(start, end - start);
}

void addCounts(std::vector<std::string>& all, const KnownEvent& event) {
    const std::string good = validPacket(event);
    std::size_t at = 12;
    for (const KnownField& field : event.fields) {
        const std::size_t start = at;
        take(good, field.type, at);
        if (field.type != 't') continue;
        const auto left = static_cast<std::uint32_t>(good.size() - start - 4);
        for (const std::uint32_t count : {0u, 1u, 5u, 7u, left - 1, left, left + 1, 0x7FFFFFFFu,
                                          0x80000000u, 0xFFFFFFFBu, 0xFFFFFFFFu}) {
            std::string packet = good;
            packet.replace(start, 4, bytesOf(count));
            all.push_back(packet);
        }
        std::string unended = good;
        for (std::size_t i = start + 4; i < unended.size(); ++i) {
            if (unended[i] == '\0') unended[i] = 'x';
        }
        all.push_back(unended);
    }
}

void addLengths(std::vector<std::string>& all, const KnownEvent& event) {
    const std::string good = validPacket(event);
    for (std::size_t length = 12; length < good.size(); ++length) {
        std::string packet = good.substr(0, length);
        all.push_back(packet.replace(4, 4, bytesOf(static_cast<std::uint32_t>(length))));
    }
    std::string longer = good + "more";
    all.push_back(longer.replace(4, 4, bytesOf(static_cast<std::uint32_t>(longer.size()))));
}

}  // namespace

std::string validPacket(const KnownEvent& event) {
    std::string payload;
    for (const KnownField& field : event.fields) payload += fieldOf(field.type, payload.size());
    return packetOf(event.opcode, payload);
}

std::vector<std::string> malformedPackets() {
    std::vector<std::string> all;
    for (const KnownEvent& event : knownEvents()) {
        addCounts(all, event);
        addLengths(all, event);
    }
    for (const std::uint32_t opcode : {0u, 1u, 2000u, kFirstOpcode - 1, lastOpcode() + 1, 4000u,
                                       0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        all.push_back(packetOf(opcode, ""));
        all.push_back(packetOf(opcode, textField("text") + textField("more")));
    }
    for (std::size_t length = 0; length < 12; ++length) {
        all.push_back(instanceListUpdatedPacket().substr(0, length));
        all.push_back(appDisplayedPacket("text0", "text10").substr(0, length));
    }
    return all;
}

Reading referenceReading(const std::string& packet) {
    const std::string length = std::to_string(packet.size());
    if (packet.size() < 8) return {{}, logged::packetTooShort(length)};
    const std::uint32_t opcode = *numberAt<std::uint32_t>(packet, 0);
    const KnownEvent* const event = findEvent(opcode);
    if (event == nullptr) {
        return {{}, logged::opcodeInvalid(std::to_string(static_cast<std::int32_t>(opcode)))};
    }
    std::vector<std::string> fields;
    std::size_t at = 12;
    for (const KnownField& known : event->fields) {
        const auto field = take(packet, known.type, at);
        if (!field) {
            return {{},
                    "E BRIDGE bridgeDecode: malformed packet, opcode = " + std::to_string(opcode) +
                        ", len = " + length};
        }
        fields.push_back(*field);
    }
    std::string call = event->slot + "(";
    for (const std::string& field : fields) call += (&field == &fields[0] ? "" : "|") + field;
    call += ")";
    if (opcode == 3004 && fields[1] == "2") return {{"onInstanceListUpdated()", call}, ""};
    return {{call}, ""};
}
