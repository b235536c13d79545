#ifndef KIT_ZIP_H
#define KIT_ZIP_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A file of an archive: its name with "/" between folders, as UTF-8.
struct ZipEntry {
    std::string name;
    std::string content;
};

// The CRC-32 of zip files.
std::uint32_t zipChecksum(std::string_view bytes);

// A zip archive of uncompressed files: at most 65,535 files and 4 GiB in total.
std::string zipArchive(const std::vector<ZipEntry>& entries);

#endif
