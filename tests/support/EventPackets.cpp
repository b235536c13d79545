#include "support/EventPackets.h"

namespace {

template <typename Number>
std::string raw(Number number) {
    return {reinterpret_cast<const char*>(&number), sizeof number};
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

std::string appInstalledPacket(std::string_view instance, std::string_view package,
                               std::string_view activity, std::string_view appLabel,
                               std::int32_t versionCode, std::string_view versionName,
                               std::string_view iconFilePath, unsigned char isUpdate) {
    return packetOf(3000, textField(instance) + textField(package) + textField(activity) +
                              textField(appLabel) + bytesOf(versionCode) + textField(versionName) +
                              textField(iconFilePath) + static_cast<char>(isUpdate));
}

std::string appUninstalledPacket(std::string_view instance, std::string_view package) {
    return packetOf(3001, textField(instance) + textField(package));
}

std::string apkInstallCompletedPacket(std::string_view instance, std::int32_t status,
                                      std::string_view apkFilePath) {
    return packetOf(3002, textField(instance) + bytesOf(status) + textField(apkFilePath));
}

std::string instanceListUpdatedPacket() { return packetOf(3003, ""); }

std::string installImageProgressPacket(std::string_view imageName, std::int32_t status,
                                       double progress) {
    return packetOf(3004, textField(imageName) + bytesOf(status) + bytesOf(progress));
}

std::string createInstanceCompletedPacket(std::int32_t status, std::string_view instance) {
    return packetOf(3005, bytesOf(status) + textField(instance));
}

std::string instanceConfigurationChangedPacket(std::string_view instance) {
    return packetOf(3006, textField(instance));
}

std::string appDisplayedPacket(std::string_view instance, std::string_view package) {
    return packetOf(3007, textField(instance) + textField(package));
}

std::string accountListUpdatedPacket(std::string_view instance, std::string_view emailId,
                                     std::int32_t action) {
    return packetOf(3008, textField(instance) + textField(emailId) + bytesOf(action));
}
