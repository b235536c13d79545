#ifndef TESTS_EVENTPACKETS_H
#define TESTS_EVENTPACKETS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Events of the table in event_table.h, and packets as the product's programs send them, laid out
// without the library's code.

std::string bytesOf(std::uint32_t number);
std::string bytesOf(std::int32_t number);
std::string bytesOf(double number);

// A text field: the count with the NUL, the bytes and the NUL.
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

// The values of an event's fields, as people write them: numbers, and 0 or 1 for a byte.
using Words = std::vector<std::string>;
Words exampleOf(const KnownEvent& event);

// Values of which each text is `text`, and each number is `number`.
Words wordsOf(const KnownEvent& event, const std::string& text, int number);

std::string eventPacket(const KnownEvent& event, const Words& words);

// What each host of the tests prints for an event: "appDisplayed Nougat64|com.example".
std::string hostLine(const KnownEvent& event, const Words& words);

std::string appInstalledPacket(std::string_view instance, std::string_view package,
                               std::string_view activity, std::string_view appLabel,
                               std::int32_t versionCode, std::string_view versionName,
                               std::string_view iconFilePath, unsigned char isUpdate);
std::string appUninstalledPacket(std::string_view instance, std::string_view package);
std::string apkInstallCompletedPacket(std::string_view instance, std::int32_t status,
                                      std::string_view apkFilePath);
std::string instanceListUpdatedPacket();
std::string installImageProgressPacket(std::string_view imageName, std::int32_t status,
                                       double progress);
std::string createInstanceCompletedPacket(std::int32_t status, std::string_view instance);
std::string instanceConfigurationChangedPacket(std::string_view instance);
std::string appDisplayedPacket(std::string_view instance, std::string_view package);
std::string accountListUpdatedPacket(std::string_view instance, std::string_view emailId,
                                     std::int32_t action);

#endif
