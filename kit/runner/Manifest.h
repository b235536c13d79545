#ifndef KIT_MANIFEST_H
#define KIT_MANIFEST_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// A line of SHA256SUMS.
struct ManifestFile {
    std::string path;  // below the kit's folder, with "/"
    std::string digest;
};

struct FileFault {
    std::string path;
    std::string what;  // "missing", "changed", or why it cannot be read
};

// Lines "<digest>  <path>". Another line makes the result empty: nothing can be said then.
std::vector<ManifestFile> readManifest(std::string_view text);

// The SHA-256 of a file in hexadecimal, or a word for why there is none.
struct FileDigest {
    std::string digest;
    std::string fault;
};

// The files that are not as the manifest says.
std::vector<FileFault> compareFiles(const std::vector<ManifestFile>& files,
                                    const std::function<FileDigest(const std::string&)>& digest);

#endif
