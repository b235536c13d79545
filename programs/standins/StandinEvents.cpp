#include "StandinEvents.h"

#include <charconv>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "ipc/IpcPacket.h"
#include "shared/JsonValue.h"

namespace {

const IpcEvent* findKind(std::string_view name) {
    for (const IpcEvent& kind : IPC_EVENT_ROWS) {
        if (kind.name == name) return &kind;
    }
    return nullptr;
}

std::string fieldHelp(const IpcEventField& field) {
    switch (field.type) {
        case IPC_I32:
            return std::string(field.name) + ":i32";
        case IPC_FLAG:
            return std::string(field.name) + ":bool";
        case IPC_DOUBLE:
            return std::string(field.name) + ":double";
        case IPC_TEXT:
            break;
    }
    return field.name;
}

std::string kindHelp(const IpcEvent& kind) {
    std::string text = kind.name;
    for (std::size_t i = 0; i < kind.fieldCount; ++i) text += " " + fieldHelp(kind.fields[i]);
    return text;
}

std::optional<StandinValue> parseI32(const std::string& text) {
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

std::optional<StandinValue> parseFlag(const std::string& text) {
    if (text == "true" || text == "1") return true;
    if (text == "false" || text == "0") return false;
    return std::nullopt;
}

// The program uses the "C" locale, so the decimal point is a point.
std::optional<StandinValue> parseDouble(const std::string& text) {
    char* stop = nullptr;
    const double number = std::strtod(text.c_str(), &stop);
    if (text.empty() || text.front() == ' ' || *stop != '\0') return std::nullopt;
    return number;
}

std::optional<StandinValue> parseValue(IpcEventFieldType type, const std::string& text) {
    switch (type) {
        case IPC_I32:
            return parseI32(text);
        case IPC_FLAG:
            return parseFlag(text);
        case IPC_DOUBLE:
            return parseDouble(text);
        case IPC_TEXT:
            break;
    }
    return text;
}

template <typename Number>
void append(std::string& bytes, Number number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void appendValue(std::string& bytes, const StandinValue& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
        append(bytes, static_cast<std::uint32_t>(text->size() + 1));
        bytes.append(text->c_str(), text->size() + 1);
    } else if (const auto* const flag = std::get_if<bool>(&value)) {
        bytes += static_cast<char>(*flag ? 1 : 0);
    } else if (const auto* const number = std::get_if<std::int32_t>(&value)) {
        append(bytes, *number);
    } else {
        append(bytes, std::get<double>(value));
    }
}

JsonArray argumentsOf(const StandinEvent& event) {
    JsonArray arguments;
    for (const StandinValue& value : event.values) {
        std::visit([&arguments](const auto& content) { arguments.push_back(content); }, value);
    }
    return arguments;
}

}  // namespace

std::optional<StandinEvent> standinParseEvent(const std::vector<std::string>& words,
                                              std::string& error) {
    const IpcEvent* const kind = words.empty() ? nullptr : findKind(words[0]);
    if (kind == nullptr) {
        error = words.empty() ? "no event is named" : "no such event: " + words[0];
        return std::nullopt;
    }
    StandinEvent event{kind, {}};
    bool fits = words.size() == kind->fieldCount + 1;
    for (std::size_t i = 0; fits && i < kind->fieldCount; ++i) {
        std::optional<StandinValue> value = parseValue(kind->fields[i].type, words[i + 1]);
        fits = value.has_value();
        if (fits) event.values.push_back(std::move(*value));
    }
    if (fits) return event;
    error = "not the arguments of: " + kindHelp(*kind);
    return std::nullopt;
}

std::string standinEncodeEvent(const StandinEvent& event) {
    std::string payload;
    for (const StandinValue& value : event.values) appendValue(payload, value);
    std::string packet;
    append(packet, event.kind->opcode);
    append(packet, static_cast<std::uint32_t>(IPC_HEADER_SIZE + payload.size()));
    append(packet, std::uint32_t{0});  // no reply
    return packet + payload;
}

std::string standinDescribeEvent(const StandinEvent& event, const StandinDelivery& delivery,
                                 StandinFormat format) {
    const JsonArray arguments = argumentsOf(event);
    if (format == StandinFormat::Json) {
        JsonObject object{
            {"event", event.kind->name},
            {"arguments", arguments},
            {"to", delivery.to.empty() ? JsonValue(nullptr) : JsonValue(std::string(delivery.to))}};
        if (delivery.cutAt > 0) object.push_back({"cutAt", static_cast<long long>(delivery.cutAt)});
        if (delivery.failed) object.push_back({"failed", true});
        return JsonValue(object).inOneLine();
    }
    const std::string list = JsonValue(arguments).inOneLine();
    std::string line =
        std::string("event ") + event.kind->name + "(" + list.substr(1, list.size() - 2) + ") -> ";
    line += delivery.to.empty() ? "nobody" : delivery.to;
    if (delivery.cutAt > 0) line += " cut at " + std::to_string(delivery.cutAt);
    if (delivery.failed) line += " failed";
    return line;
}

std::string standinEventHelp() {
    std::string text;
    for (const IpcEvent& kind : IPC_EVENT_ROWS) text += "    " + kindHelp(kind) + "\n";
    return text;
}
