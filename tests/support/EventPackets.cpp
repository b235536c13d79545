#include "support/EventPackets.h"

#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "support/event_table.h"

namespace {

template <typename Number>
std::string raw(Number number) {
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

KnownField makeField(char type, const char* name, const char* example) {
    return {type, name, example};
}

KnownEvent makeEvent(std::uint32_t opcode, const char* slot, const char* printed, const char* name,
                     std::vector<KnownField> fields) {
    return {opcode, slot, printed, name, std::move(fields)};
}

// The bytes of a field with this value.
std::string fieldOf(char type, const std::string& word) {
    switch (type) {
        case 'i':
            return raw(static_cast<std::int32_t>(std::stoi(word)));
        case 'd':
            return raw(std::stod(word));
        case 'b':
            return raw(static_cast<unsigned char>(std::stoi(word)));
        default:
            return textField(word);
    }
}

// Every digit of a number.
std::string wordOf(double number) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
}

std::string packetNamed(std::string_view event, const Words& words) {
    return eventPacket(knownEvent(event), words);
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
    std::string payload;
    for (std::size_t i = 0; i < event.fields.size(); ++i) {
        payload += fieldOf(event.fields[i].type, words.at(i));
    }
    return packetOf(event.opcode, payload);
}

std::string hostLine(const KnownEvent& event, const Words& words) {
    std::string line = event.printed;
    for (std::size_t i = 0; i < event.fields.size(); ++i) {
        line += (i == 0 ? " " : "|") + printed(event.fields[i].type, words.at(i));
    }
    return line;
}

std::string appInstalledPacket(const std::string& instance, const std::string& package,
                               const std::string& activity, const std::string& appLabel,
                               std::int32_t versionCode, const std::string& versionName,
                               const std::string& iconFilePath, unsigned char isUpdate) {
    return packetNamed("app-installed",
                       {instance, package, activity, appLabel, std::to_string(versionCode),
                        versionName, iconFilePath, std::to_string(isUpdate)});
}

std::string appUninstalledPacket(const std::string& instance, const std::string& package) {
    return packetNamed("app-uninstalled", {instance, package});
}

std::string apkInstallCompletedPacket(const std::string& instance, std::int32_t status,
                                      const std::string& apkFilePath) {
    return packetNamed("apk-install-completed", {instance, std::to_string(status), apkFilePath});
}

std::string instanceListUpdatedPacket() { return packetNamed("instance-list-updated", {}); }

std::string installImageProgressPacket(const std::string& imageName, std::int32_t status,
                                       double progress) {
    return packetNamed("image-install-progress",
                       {imageName, std::to_string(status), wordOf(progress)});
}

std::string createInstanceCompletedPacket(std::int32_t status, const std::string& instance) {
    return packetNamed("create-instance-completed", {std::to_string(status), instance});
}

std::string instanceConfigurationChangedPacket(const std::string& instance) {
    return packetNamed("instance-configuration-changed", {instance});
}

std::string appDisplayedPacket(const std::string& instance, const std::string& package) {
    return packetNamed("app-displayed", {instance, package});
}

std::string accountListUpdatedPacket(const std::string& instance, const std::string& emailId,
                                     std::int32_t action) {
    return packetNamed("account-list-updated", {instance, emailId, std::to_string(action)});
}
