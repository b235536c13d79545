#include "support/EventPackets.h"

#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <utility>
#include <variant>

#include "support/event_table.h"

namespace {

template <typename Number>
std::string raw(Number number) {
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

std::string fieldOf(const std::string& text) { return textField(text); }
std::string fieldOf(std::int32_t number) { return raw(number); }
std::string fieldOf(double number) { return raw(number); }
std::string fieldOf(unsigned char byte) { return raw(byte); }

KnownField makeField(char type, const char* name, const char* example) {
    return {type, name, example};
}

KnownEvent makeEvent(std::uint32_t opcode, const char* slot, const char* printed, const char* name,
                     std::vector<KnownField> fields) {
    return {opcode, slot, printed, name, std::move(fields)};
}

// In the order of "tidb".
using FieldValue = std::variant<std::string, std::int32_t, double, unsigned char>;

// The packet of an event with these values, which are of the types that its fields have.
std::string layOut(const KnownEvent& event, const std::vector<FieldValue>& values) {
    std::string payload;
    for (std::size_t i = 0; i < event.fields.size(); ++i) {
        const std::size_t type = std::string_view("tidb").find(event.fields[i].type);
        if (values.at(i).index() != type) throw std::logic_error(event.name);
        payload += std::visit([](const auto& value) { return fieldOf(value); }, values[i]);
    }
    return packetOf(event.opcode, payload);
}

FieldValue valueOf(char type, const std::string& word) {
    switch (type) {
        case 'i':
            return static_cast<std::int32_t>(std::stoi(word));
        case 'd':
            return std::stod(word);
        case 'b':
            return static_cast<unsigned char>(std::stoi(word));
        default:
            return word;
    }
}

std::string printed(char type, const std::string& word) {
    if (type != 'd') return word;
    char text[400];
    std::snprintf(text, sizeof text, "%.3f", std::stod(word));
    return text;
}

}  // namespace

std::string bytesOf(std::uint32_t number) { return raw(number); }
std::string bytesOf(std::int32_t number) { return raw(number); }
std::string bytesOf(double number) { return raw(number); }

std::string textField(std::string_view text) {
    return bytesOf(static_cast<std::uint32_t>(text.size() + 1)).append(text).append(1, '\0');
}

std::string packetOf(std::uint32_t opcode, std::string_view payload, std::uint32_t replyLength) {
    return (bytesOf(opcode) + bytesOf(static_cast<std::uint32_t>(12 + payload.size())) +
            bytesOf(replyLength))
        .append(payload);
}

const std::vector<KnownEvent>& knownEvents() {
#define TEXT_FIELD(name, example) makeField('t', #name, example)
#define I32_FIELD(name, example) makeField('i', #name, #example)
#define DOUBLE_FIELD(name, example) makeField('d', #name, #example)
#define FLAG_FIELD(name, example) makeField('b', #name, #example)
#define FIELDS(slot) FIELDS_##slot(TEXT_FIELD, I32_FIELD, DOUBLE_FIELD, FLAG_FIELD, )
#define ROW(opcode, type, slot, printed, name) \
    makeEvent(opcode, #slot, #printed, name, {FIELDS(slot)})
    static const std::vector<KnownEvent>& events =
        *new std::vector<KnownEvent>{KNOWN_EVENTS(ROW, KNOWN_EVENTS_COMMA)};
    return events;
}

const KnownEvent& knownEvent(std::string_view name) {
    for (const KnownEvent& event : knownEvents()) {
        if (event.name == name) return event;
    }
    throw std::logic_error(std::string(name));
}

std::uint32_t lastOpcode() { return knownEvents().back().opcode; }

Words exampleOf(const KnownEvent& event) {
    Words words;
    for (const KnownField& field : event.fields) words.push_back(field.example);
    return words;
}

Words wordsOf(const KnownEvent& event, const std::string& text, int number) {
    Words words;
    for (const KnownField& field : event.fields) {
        words.push_back(field.type == 't' ? text : std::to_string(number));
    }
    return words;
}

std::string eventPacket(const KnownEvent& event, const Words& words) {
    std::vector<FieldValue> values;
    for (std::size_t i = 0; i < event.fields.size(); ++i) {
        values.push_back(valueOf(event.fields[i].type, words.at(i)));
    }
    return layOut(event, values);
}

std::string hostLine(const KnownEvent& event, const Words& words) {
    std::string line = event.printed;
    for (std::size_t i = 0; i < event.fields.size(); ++i) {
        line += (i == 0 ? " " : "|") + printed(event.fields[i].type, words.at(i));
    }
    return line;
}

std::string appInstalledPacket(std::string_view instance, std::string_view package,
                               std::string_view activity, std::string_view appLabel,
                               std::int32_t versionCode, std::string_view versionName,
                               std::string_view iconFilePath, unsigned char isUpdate) {
    return layOut(
        knownEvent("app-installed"),
        {std::string(instance), std::string(package), std::string(activity), std::string(appLabel),
         versionCode, std::string(versionName), std::string(iconFilePath), isUpdate});
}

std::string appUninstalledPacket(std::string_view instance, std::string_view package) {
    return layOut(knownEvent("app-uninstalled"), {std::string(instance), std::string(package)});
}

std::string apkInstallCompletedPacket(std::string_view instance, std::int32_t status,
                                      std::string_view apkFilePath) {
    return layOut(knownEvent("apk-install-completed"),
                  {std::string(instance), status, std::string(apkFilePath)});
}

std::string instanceListUpdatedPacket() { return layOut(knownEvent("instance-list-updated"), {}); }

std::string installImageProgressPacket(std::string_view imageName, std::int32_t status,
                                       double progress) {
    return layOut(knownEvent("image-install-progress"), {std::string(imageName), status, progress});
}

std::string createInstanceCompletedPacket(std::int32_t status, std::string_view instance) {
    return layOut(knownEvent("create-instance-completed"), {status, std::string(instance)});
}

std::string instanceConfigurationChangedPacket(std::string_view instance) {
    return layOut(knownEvent("instance-configuration-changed"), {std::string(instance)});
}

std::string appDisplayedPacket(std::string_view instance, std::string_view package) {
    return layOut(knownEvent("app-displayed"), {std::string(instance), std::string(package)});
}

std::string accountListUpdatedPacket(std::string_view instance, std::string_view emailId,
                                     std::int32_t action) {
    return layOut(knownEvent("account-list-updated"),
                  {std::string(instance), std::string(emailId), action});
}
