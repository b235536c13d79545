#include "Manifest.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t kDigestLength = 64;

bool isDigest(std::string_view text) {
    return text.size() == kDigestLength &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

}  // namespace

std::vector<ManifestFile> readManifest(std::string_view text) {
    std::vector<ManifestFile> files;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.size() < kDigestLength + 3 || !isDigest(line.substr(0, kDigestLength))) return {};
        files.push_back({std::string(line.substr(kDigestLength + 2)),
                         std::string(line.substr(0, kDigestLength))});
    }
    return files;
}

std::vector<FileFault> compareFiles(const std::vector<ManifestFile>& files,
                                    const std::function<FileDigest(const std::string&)>& digest) {
    std::vector<FileFault> faults;
    for (const ManifestFile& file : files) {
        const FileDigest found = digest(file.path);
        if (!found.fault.empty()) {
            faults.push_back({file.path, found.fault});
        } else if (found.digest != file.digest) {
            faults.push_back({file.path, "changed"});
        }
    }
    return faults;
}
