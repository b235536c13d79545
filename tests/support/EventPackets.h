#ifndef TESTS_EVENTPACKETS_H
#define TESTS_EVENTPACKETS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The events of event_table.h, and their packets as the product's programs send them. Made without
// the library's code.

std::string bytesOf(std::uint32_t number);
std::string bytesOf(std::int32_t number);
std::string bytesOf(double number);

// A text field: the length with the NUL, the bytes, the NUL.
std::string textField(std::string_view text);

// A header with the true length, and the payload.
std::string packetOf(std::uint32_t opcode, std::string_view payload, std::uint32_t replyLength = 0);

// A field's type: t text, i 32-bit number, d double, b byte.
struct KnownField {
    char type;
    std::string name;
    std::string example;
};

struct KnownEvent {
    std::uint32_t opcode;
    std::string slot;     // "onAppDisplayed"
    std::string printed;  // "appDisplayed"
    std::string name;     // "app-displayed"
    std::vector<KnownField> fields;
};

// Every event, in the order of the slots.
const std::vector<KnownEvent>& knownEvents();

// The event with this name; there must be one.
const KnownEvent& knownEvent(std::string_view name);

constexpr std::uint32_t kFirstOpcode = 3000;
std::uint32_t lastOpcode();

// The values of an event's fields as text. A byte is 0 or 1.
using Words = std::vector<std::string>;
Words exampleOf(const KnownEvent& event);

// The values of an event whose texts are all `text` and whose numbers are all `number`.
Words wordsOf(const KnownEvent& event, const std::string& text, int number);

std::string eventPacket(const KnownEvent& event, const Words& words);

// The line that the test hosts print for an event: "appDisplayed Nougat64|com.example".
std::string hostLine(const KnownEvent& event, const Words& words);

std::string appInstalledPacket(const std::string& instance, const std::string& package,
                               const std::string& activity, const std::string& appLabel,
                               std::int32_t versionCode, const std::string& versionName,
                               const std::string& iconFilePath, unsigned char isUpdate);
std::string appUninstalledPacket(const std::string& instance, const std::string& package);
std::string apkInstallCompletedPacket(const std::string& instance, std::int32_t status,
                                      const std::string& apkFilePath);
std::string instanceListUpdatedPacket();
std::string installImageProgressPacket(const std::string& imageName, std::int32_t status,
                                       double progress);
std::string createInstanceCompletedPacket(std::int32_t status, const std::string& instance);
std::string instanceConfigurationChangedPacket(const std::string& instance);
std::string appDisplayedPacket(const std::string& instance, const std::string& package);
std::string accountListUpdatedPacket(const std::string& instance, const std::string& emailId,
                                     std::int32_t action);

#endif
