#ifndef KIT_MANIFEST_H
#define KIT_MANIFEST_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// A line of SHA256SUMS.
struct ManifestFile {
    std::string path;  // relative to the kit's folder, with "/"
    std::string digest;
};

struct FileFault {
    std::string path;
    std::string what;  // "missing", "changed", or the error of the read
};

// Reads lines "<digest>  <path>". The result is empty if a line has another form.
std::vector<ManifestFile> readManifest(std::string_view text);

// The SHA-256 of a file in hexadecimal, or the reason why there is none.
struct FileDigest {
    std::string digest;
    std::string fault;
};

// The files that differ from the manifest.
std::vector<FileFault> compareFiles(const std::vector<ManifestFile>& files,
                                    const std::function<FileDigest(const std::string&)>& digest);

#endif
