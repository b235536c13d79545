#ifndef UTL_UTLIMAGES_H
#define UTL_UTLIMAGES_H

#include <cstdint>
#include <string>
#include <string_view>

// An Android system image that instances run.
struct UtlImageTrait {
    const char* name;         // key of the table: "Nougat64"
    bool is64Bit;             // runs 64-bit code
    const char* family;       // Android release family
    const char* displayName;  // shown to users
    const char* shortName;    // three characters
    std::int32_t count;       // for the product's other programs
};

// The trait record of an image, by its exact name; null for an unknown image.
const UtlImageTrait* utlFindImageTrait(std::string_view imageName);

// The same for callers that know the image: an unknown one is fatal.
const UtlImageTrait& utlGetImageTrait(std::string_view imageName);

// Image part of an instance name: the text before its first "_".
std::string_view utlImageNameOfInstance(std::string_view instance);

// "x86,x64,arm,arm64" as far as the mask (bits 1, 2, 4, 8) and the image have them. A mask outside
// 1 to 15 is logged and gives an empty text.
std::string utlGetAbiListFromAbiInt(std::int32_t abiMask, const std::string& imageName);

// Version of the library. The plain text is what hosts and the registry compare; the full one
// carries the build variant.
constexpr const char* UTL_VERSION = "5.2.0.1052";
std::string utlLibraryVersion();

// MD5 of the full version text, 32 lower-case hexadecimal digits.
std::string utlLibraryVersionDigest();

// Where an image archive is downloaded from. The server is fixed when the library is built; without
// one, the text starts with the digest.
std::string utlImageDownloadLocation(std::string_view imageName);

#endif
