// From event packets to calls.
#include "bridge/BridgeDec.h"

#include <cstddef>
#include <cstring>
#include <iterator>

#include "bridge/BridgeIpcClbk.h"
#include "ipc/IpcPacket.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kLog{XlogTag::BRIDGE, "Source/bridge/BridgeDec"};

// What holds an opcode and a length. The fields start after a whole header all the same.
constexpr std::int32_t kMinLength = 8;
constexpr std::int32_t kFirstOpcode = 3000;

// A text inside the packet: the host reads to the NUL, the packet says where the next field starts.
struct Text {
    const char* bytes = nullptr;
    std::uint32_t count = 0;
};

// Takes the fields of a packet one after another. They are valid while each lies inside the packet;
// from the first that does not, all read as zeros.
class Fields {
 public:
    Fields(const std::uint8_t* packet, std::size_t length) : packet_(packet), length_(length) {}

    bool valid() const { return valid_; }

    std::int32_t number() { return take<std::int32_t>(); }
    double real() { return take<double>(); }
    std::uint8_t byte() { return take<std::uint8_t>(); }

    // Besides its counted bytes a text needs a NUL anywhere before the packet's end.
    Text text() {
        Text text;
        text.count = take<std::uint32_t>();
        const std::size_t left = length_ - at_;
        if (!valid_ || text.count > left || std::memchr(packet_ + at_, '\0', left) == nullptr) {
            valid_ = false;
            return {};
        }
        text.bytes = reinterpret_cast<const char*>(packet_ + at_);
        at_ += text.count;
        return text;
    }

 private:
    template <typename Value>
    Value take() {
        Value value{};
        if (valid_ && at_ <= length_ && length_ - at_ >= sizeof value) {
            std::memcpy(&value, packet_ + at_, sizeof value);
            at_ += sizeof value;
        } else {
            valid_ = false;
            at_ = length_;
        }
        return value;
    }

    const std::uint8_t* packet_;
    std::size_t length_;
    std::size_t at_ = IPC_HEADER_SIZE;
    bool valid_ = true;
};

// Each takes its event's fields, and nothing else happens unless all of them are valid.

bool decodeAppInstalled(Fields& fields) {
    const Text instance = fields.text();
    const Text package = fields.text();
    const Text activity = fields.text();
    const Text appLabel = fields.text();
    const std::int32_t versionCode = fields.number();
    const Text versionName = fields.text();
    const Text iconFilePath = fields.text();
    const std::uint8_t isUpdate = fields.byte();
    if (!fields.valid()) return false;
    XLOG_D(kLog, "bridgeOnAppInstalled (%p(%u), %p(%u), %p(%u), %p(%u), %d, %p(%u), %p(%u), %d)\n",
           static_cast<const void*>(instance.bytes), instance.count,
           static_cast<const void*>(package.bytes), package.count,
           static_cast<const void*>(activity.bytes), activity.count,
           static_cast<const void*>(appLabel.bytes), appLabel.count, versionCode,
           static_cast<const void*>(versionName.bytes), versionName.count,
           static_cast<const void*>(iconFilePath.bytes), iconFilePath.count, isUpdate);
    bridgeOnAppInstalledClbk(instance.bytes, package.bytes, activity.bytes, appLabel.bytes,
                             versionCode, versionName.bytes, iconFilePath.bytes,
                             isUpdate != 0 ? 1 : 0);
    XLOG_D(kLog, "bridgeOnAppInstalled returning\n");
    return true;
}

bool decodeAppUninstalled(Fields& fields) {
    const Text instance = fields.text();
    const Text package = fields.text();
    if (!fields.valid()) return false;
    XLOG_D(kLog, "bridgeOnAppUninstalled (%p(%u), %p(%u))\n",
           static_cast<const void*>(instance.bytes), instance.count,
           static_cast<const void*>(package.bytes), package.count);
    bridgeOnAppUninstalledClbk(instance.bytes, package.bytes);
    XLOG_D(kLog, "bridgeOnAppUninstalled returning\n");
    return true;
}

bool decodeApkInstallCompleted(Fields& fields) {
    const Text instance = fields.text();
    const std::int32_t status = fields.number();
    const Text apkFilePath = fields.text();
    if (!fields.valid()) return false;
    XLOG_D(kLog, "bridgeOnApkInstallCompleted (%p(%u), %d, %p(%u))\n",
           static_cast<const void*>(instance.bytes), instance.count, status,
           static_cast<const void*>(apkFilePath.bytes), apkFilePath.count);
    bridgeOnApkInstallCompletedClbk(instance.bytes, status, apkFilePath.bytes);
    XLOG_D(kLog, "bridgeOnApkInstallCompleted returning\n");
    return true;
}

bool decodeInstanceListUpdated(Fields&) {
    XLOG_D(kLog, "bridgeOnInstanceListUpdated ()\n");
    bridgeOnInstanceListUpdatedClbk();
    XLOG_D(kLog, "bridgeOnInstanceListUpdated returning\n");
    return true;
}

bool decodeInstallImageProgress(Fields& fields) {
    const Text imageName = fields.text();
    const std::int32_t status = fields.number();
    const double progress = fields.real();
    if (!fields.valid()) return false;
    XLOG_D(kLog, "bridgeInstallImageProgress (%p(%u), %d, %lf)\n",
           static_cast<const void*>(imageName.bytes), imageName.count, status, progress);
    bridgeInstallImageProgressClbk(imageName.bytes, status, progress);
    XLOG_D(kLog, "bridgeInstallImageProgress returning\n");
    return true;
}

// The one event whose number comes before its text.
bool decodeCreateInstanceCompleted(Fields& fields) {
    const std::int32_t status = fields.number();
    const Text instance = fields.text();
    if (!fields.valid()) return false;
    XLOG_D(kLog, "bridgeOnCreateInstanceCompleted (%d, %p(%u))\n", status,
           static_cast<const void*>(instance.bytes), instance.count);
    bridgeOnCreateInstanceCompletedClbk(status, instance.bytes);
    XLOG_D(kLog, "bridgeOnCreateInstanceCompleted returning\n");
    return true;
}

bool decodeInstanceConfigurationChanged(Fields& fields) {
    const Text instance = fields.text();
    if (!fields.valid()) return false;
    XLOG_D(kLog, "bridgeOnInstanceConfigurationChanged (%p(%u))\n",
           static_cast<const void*>(instance.bytes), instance.count);
    bridgeOnInstanceConfigurationChangedClbk(instance.bytes);
    XLOG_D(kLog, "bridgeOnInstanceConfigurationChanged returning\n");
    return true;
}

bool decodeAppDisplayed(Fields& fields) {
    const Text instance = fields.text();
    const Text package = fields.text();
    if (!fields.valid()) return false;
    XLOG_D(kLog, "bridgeOnAppDisplayed (%p(%u), %p(%u))\n",
           static_cast<const void*>(instance.bytes), instance.count,
           static_cast<const void*>(package.bytes), package.count);
    bridgeOnAppDisplayedClbk(instance.bytes, package.bytes);
    XLOG_D(kLog, "bridgeOnAppDisplayed returning\n");
    return true;
}

bool decodeAccountListUpdated(Fields& fields) {
    const Text instance = fields.text();
    const Text emailId = fields.text();
    const std::int32_t action = fields.number();
    if (!fields.valid()) return false;
    XLOG_D(kLog, "bridgeOnAccountListUpdated (%p(%u), %p(%u), %d)\n",
           static_cast<const void*>(instance.bytes), instance.count,
           static_cast<const void*>(emailId.bytes), emailId.count, action);
    bridgeOnAccountListUpdatedClbk(instance.bytes, emailId.bytes, action);
    XLOG_D(kLog, "bridgeOnAccountListUpdated returning\n");
    return true;
}

using Decoder = bool (*)(Fields& fields);

constexpr Decoder kDecoders[] = {
    decodeAppInstalled,         // 3000
    decodeAppUninstalled,       // 3001
    decodeApkInstallCompleted,  // 3002
    decodeInstanceListUpdated,  // 3003
    decodeInstallImageProgress, decodeCreateInstanceCompleted, decodeInstanceConfigurationChanged,
    decodeAppDisplayed,
    decodeAccountListUpdated,  // 3008
};

}  // namespace

bool bridgeDecode(QLocalSocket* /*socket*/, const std::uint8_t* buffer, std::int32_t length,
                  void* /*reply*/, std::int32_t /*replyLength*/) {
    if (length < kMinLength) {
        XLOG_E(kLog, "%s: invalid bufferLen: %d", "bridgeDecode", length);
        return false;
    }
    std::int32_t opcode = 0;
    std::memcpy(&opcode, buffer + IPC_OPCODE_OFFSET, sizeof opcode);
    const std::int64_t index = std::int64_t{opcode} - kFirstOpcode;
    if (index < 0 || index >= static_cast<std::int64_t>(std::size(kDecoders))) {
        XLOG_E(kLog, "%s: invalid opcode: %d", "bridgeDecode", opcode);
        return false;
    }
    Fields fields(buffer, static_cast<std::size_t>(length));
    if (!kDecoders[index](fields)) {
        XLOG_E(kLog, "%s: malformed packet, opcode = %d, len = %d", "bridgeDecode", opcode, length);
        return false;
    }
    return true;
}
