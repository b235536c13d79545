#ifndef TESTS_EVENTPACKETS_H
#define TESTS_EVENTPACKETS_H

#include <cstdint>
#include <string>
#include <string_view>

// Packets as the product's programs send them, laid out without the library's code.

std::string bytesOf(std::uint32_t number);
std::string bytesOf(std::int32_t number);
std::string bytesOf(double number);

// A text field: the count with the NUL, the bytes and the NUL.
std::string textField(std::string_view text);

// A header with the true length, and the payload.
std::string packetOf(std::uint32_t opcode, std::string_view payload, std::uint32_t replyLength = 0);

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
