#include "StandinEvents.h"

#include <charconv>
#include <cstdlib>
#include <iterator>
#include <system_error>
#include <utility>

#include "ipc/IpcPacket.h"
#include "shared/JsonValue.h"

namespace {

using Type = StandinFieldType;

constexpr StandinField kInstance{"instance", Type::Text};
constexpr StandinField kPackage{"package", Type::Text};
constexpr StandinField kStatus{"status", Type::I32};

constexpr StandinEventKind kKinds[] = {
    {"app-installed",
     3000,
     8,
     {kInstance,
      kPackage,
      {"activity", Type::Text},
      {"appLabel", Type::Text},
      {"versionCode", Type::I32},
      {"versionName", Type::Text},
      {"iconFilePath", Type::Text},
      {"isUpdate", Type::Flag}}},
    {"app-uninstalled", 3001, 2, {kInstance, kPackage}},
    {"apk-install-completed", 3002, 3, {kInstance, kStatus, {"apkFilePath", Type::Text}}},
    {"instance-list-updated", 3003, 0, {}},
    {"image-install-progress",
     3004,
     3,
     {{"imageName", Type::Text}, kStatus, {"progress", Type::Double}}},
    {"create-instance-completed", 3005, 2, {kStatus, kInstance}},
    {"instance-configuration-changed", 3006, 1, {kInstance}},
    {"app-displayed", 3007, 2, {kInstance, kPackage}},
    {"account-list-updated", 3008, 3, {kInstance, {"emailId", Type::Text}, {"action", Type::I32}}},
};

const StandinEventKind* findKind(std::string_view name) {
    for (const StandinEventKind& kind : kKinds) {
        if (kind.name == name) return &kind;
    }
    return nullptr;
}

std::string fieldHelp(const StandinField& field) {
    switch (field.type) {
        case Type::I32:
            return std::string(field.name) + ":i32";
        case Type::Flag:
            return std::string(field.name) + ":bool";
        case Type::Double:
            return std::string(field.name) + ":double";
        case Type::Text:
            break;
    }
    return field.name;
}

std::string kindHelp(const StandinEventKind& kind) {
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

// This program never leaves the "C" locale, so that the point is a point.
std::optional<StandinValue> parseDouble(const std::string& text) {
    char* stop = nullptr;
    const double number = std::strtod(text.c_str(), &stop);
    if (text.empty() || text.front() == ' ' || *stop != '\0') return std::nullopt;
    return number;
}

std::optional<StandinValue> parseValue(Type type, const std::string& text) {
    switch (type) {
        case Type::I32:
            return parseI32(text);
        case Type::Flag:
            return parseFlag(text);
        case Type::Double:
            return parseDouble(text);
        case Type::Text:
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

StandinEventKinds standinEventKinds() { return {kKinds, std::size(kKinds)}; }

std::optional<StandinEvent> standinParseEvent(const std::vector<std::string>& words,
                                              std::string& error) {
    const StandinEventKind* const kind = words.empty() ? nullptr : findKind(words[0]);
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
    for (const StandinEventKind& kind : kKinds) text += "    " + kindHelp(kind) + "\n";
    return text;
}
