#include "Zip.h"

#include <array>
#include <cstddef>

namespace {

constexpr std::uint32_t kFileSignature = 0x04034b50;
constexpr std::uint32_t kDirectorySignature = 0x02014b50;
constexpr std::uint32_t kEndSignature = 0x06054b50;
constexpr std::uint16_t kVersion = 20;
constexpr std::uint16_t kNamesAreUtf8 = 0x0800;
constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kTime = 0;
constexpr std::uint16_t kFirstDay = 0x21;  // of 1980

std::array<std::uint32_t, 256> checksumTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320u : 0);
        }
        table[i] = value;
    }
    return table;
}

template <typename Number>
void put(std::string& out, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i) {
        out += static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * i) & 0xff);
    }
}

std::uint32_t size32(std::string_view bytes) { return static_cast<std::uint32_t>(bytes.size()); }

// The fields that a local header and a directory entry share.
void putFields(std::string& out, const ZipEntry& entry) {
    put(out, kVersion);
    put(out, kNamesAreUtf8);
    put(out, kStored);
    put(out, kTime);
    put(out, kFirstDay);
    put(out, zipChecksum(entry.content));
    put(out, size32(entry.content));
    put(out, size32(entry.content));
    put(out, static_cast<std::uint16_t>(entry.name.size()));
    put(out, std::uint16_t{0});  // extra field
}

void putDirectoryEntry(std::string& out, const ZipEntry& entry, std::uint32_t offset) {
    put(out, kDirectorySignature);
    put(out, kVersion);  // made by
    putFields(out, entry);
    put(out, std::uint16_t{0});  // comment
    put(out, std::uint16_t{0});  // disk
    put(out, std::uint16_t{0});  // internal attributes
    put(out, std::uint32_t{0});  // external attributes
    put(out, offset);
    out += entry.name;
}

}  // namespace

std::uint32_t zipChecksum(std::string_view bytes) {
    static const std::array<std::uint32_t, 256> table = checksumTable();
    std::uint32_t value = 0xffffffff;
    for (const char c : bytes)
        value = table[(value ^ static_cast<unsigned char>(c)) & 0xff] ^ (value >> 8);
    return ~value;
}

std::string zipArchive(const std::vector<ZipEntry>& entries) {
    std::string out;
    std::string directory;
    for (const ZipEntry& entry : entries) {
        putDirectoryEntry(directory, entry, size32(out));
        put(out, kFileSignature);
        putFields(out, entry);
        out += entry.name;
        out += entry.content;
    }
    const std::uint32_t offset = size32(out);
    out += directory;
    put(out, kEndSignature);
    put(out, std::uint32_t{0});  // disks
    put(out, static_cast<std::uint16_t>(entries.size()));
    put(out, static_cast<std::uint16_t>(entries.size()));
    put(out, size32(directory));
    put(out, offset);
    put(out, std::uint16_t{0});  // comment
    return out;
}
