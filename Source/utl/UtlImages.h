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

// Traits of an image, by its exact name; null for an unknown image.
const UtlImageTrait* utlFindImageTrait(std::string_view imageName);

// The same, but an unknown image is fatal.
const UtlImageTrait& utlGetImageTrait(std::string_view imageName);

// Image part of an instance name: the text before its first "_".
std::string_view utlImageNameOfInstance(std::string_view instance);

// The ABIs of the mask (1 "x86", 2 "x64", 4 "arm", 8 "arm64") that the image supports, separated by
// ",". Returns "" after logging a mask outside 1 to 15.
std::string utlGetAbiListFromAbiInt(std::int32_t abiMask, const std::string& imageName);

// Version of the library. Hosts and the registry compare the plain text; the full text includes the
// build variant.
constexpr const char* UTL_VERSION = "5.2.0.1052";
std::string utlLibraryVersion();

// MD5 of the full version text, 32 lower-case hexadecimal digits.
std::string utlLibraryVersionDigest();

// Download address of an image archive. The server is fixed at build time; without one, the text
// starts with the digest.
std::string utlImageDownloadLocation(std::string_view imageName);

#endif
