// The images that instances run, and the library's version, which selects the download.
#include "utl/UtlImages.h"

#include <QCryptographicHash>

#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kLog{XlogTag::UTL, "Source/utl/Utl"};

constexpr UtlImageTrait kImages[] = {
    {"Nougat32", false, "Nougat", "Nougat 32-bit", "N32", 1},
    {"Nougat64", true, "Nougat", "Nougat 64-bit", "N64", 1},
};

constexpr const char* kBuildVariant = "-orvane";
constexpr const char* kDownloadBase = "";  // set this when building for a download server

constexpr std::int32_t kAbiMaskMin = 1;
constexpr std::int32_t kAbiMaskMax = 15;

struct Abi {
    std::int32_t bit;
    const char* name;
    bool needs64Bit;
};

constexpr Abi kAbis[] = {
    {1, "x86", false},
    {2, "x64", true},
    {4, "arm", false},
    {8, "arm64", true},
};

}  // namespace

const UtlImageTrait* utlFindImageTrait(std::string_view imageName) {
    for (const UtlImageTrait& image : kImages) {
        if (imageName == image.name) return &image;
    }
    return nullptr;
}

const UtlImageTrait& utlGetImageTrait(std::string_view imageName) {
    if (const UtlImageTrait* image = utlFindImageTrait(imageName)) return *image;
    XLOG_E(kLog, "%s: Unknown image %s", "utlGetImageTrait", std::string(imageName).c_str());
    XLOG_FATAL(kLog);
}

std::string_view utlImageNameOfInstance(std::string_view instance) {
    return instance.substr(0, instance.find('_'));
}

std::string utlGetAbiListFromAbiInt(std::int32_t abiMask, const std::string& imageName) {
    if (abiMask < kAbiMaskMin || abiMask > kAbiMaskMax) {
        XLOG_E(kLog, "Invalid ABI value %d for imageName %s", abiMask, imageName.c_str());
        return {};
    }
    std::string list;
    for (const Abi& abi : kAbis) {
        if ((abiMask & abi.bit) == 0) continue;
        if (abi.needs64Bit && !utlGetImageTrait(imageName).is64Bit) continue;
        list.append(list.empty() ? "" : ",").append(abi.name);
    }
    return list;
}

std::string utlLibraryVersion() { return std::string(UTL_VERSION) + kBuildVariant; }

std::string utlLibraryVersionDigest() {
    const QByteArray version = QByteArray::fromStdString(utlLibraryVersion());
    return QCryptographicHash::hash(version, QCryptographicHash::Md5).toHex().toStdString();
}

std::string utlImageDownloadLocation(std::string_view imageName) {
    return std::string(kDownloadBase)
        .append(utlLibraryVersionDigest())
        .append("/Android/")
        .append(imageName)
        .append(".zip");
}
