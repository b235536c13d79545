#include "Event.h"

#include <cstddef>
#include <cstdio>

namespace {

JsonValue jsonOf(const EventValue& value) {
    return std::visit([](const auto& content) { return JsonValue(content); }, value);
}

// Escapes the control characters that JSON allows unescaped: DEL and U+0080 to U+009F.
std::string withoutControls(const std::string& json) {
    std::string safe;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const auto byte = static_cast<unsigned char>(json[i]);
        const auto next = static_cast<unsigned char>(i + 1 < json.size() ? json[i + 1] : 0);
        const bool isC1 = byte == 0xC2 && next < 0xA0;
        if (byte != 0x7F && !isC1) {
            safe += json[i];
            continue;
        }
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", isC1 ? next : byte);
        safe += escaped;
        if (isC1) ++i;
    }
    return safe;
}

}  // namespace

std::string jsonLine(const JsonValue& value) { return withoutControls(value.inOneLine()); }

std::vector<std::string> eventNames() {
    std::vector<std::string> names;
    for (const IpcEvent& event : IPC_EVENT_ROWS) names.push_back(event.name);
    return names;
}

std::string isoTime(const LocalTime& time) {
    const int offset = time.offset < 0 ? -time.offset : time.offset;
    char text[96];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03d%c%02d:%02d", time.year,
                  time.month, time.day, time.hour, time.minute, time.second, time.millisecond,
                  time.offset < 0 ? '-' : '+', offset / 60, offset % 60);
    return text;
}

std::string eventText(const Event& event) {
    std::string line = isoTime(event.time) + " " + event.kind->name;
    for (std::size_t i = 0; i < event.values.size(); ++i) {
        line.append(" ").append(event.kind->fields[i].name).append("=");
        line.append(jsonLine(jsonOf(event.values[i])));
    }
    return line + "\n";
}

std::string eventJson(const Event& event) {
    JsonObject object{{"time", isoTime(event.time)}, {"event", event.kind->name}};
    for (std::size_t i = 0; i < event.values.size(); ++i) {
        object.push_back({event.kind->fields[i].name, jsonOf(event.values[i])});
    }
    return jsonLine(object) + "\n";
}
