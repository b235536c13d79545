// The configuration's file operations on the disk. Handles are not inherited: a child that
// inherited one would keep the file from being replaced.
#include "conf/ConfFiles.h"

#include <cstdint>
#include <utility>

#include "xpl/Xfile.h"
#include "xpl/Xunload.h"

namespace {

class DiskOutput final : public ConfOutput {
 public:
    explicit DiskOutput(Xfile file) : file_(std::move(file)) {}

    XErr write(std::string_view piece, std::size_t& done) override {
        return xfileWriteAll(file_, piece.data(), piece.size(), done);
    }

 private:
    Xfile file_;
};

class DiskFiles final : public ConfFiles {
 public:
    ConfFileRead read(const std::string& path, std::string& content) override {
        Xfile file;
        if (xfileOpen(file, path, XfileMode::Read, XfileSharing::Private) != XERR_SUCCESS) {
            return ConfFileRead::OpenFailed;
        }
        std::int64_t size = 0;
        if (xfileSize(file, size) != XERR_SUCCESS) return ConfFileRead::ReadFailed;
        const auto length = static_cast<std::size_t>(size);
        content.reserve(length + length / 16);  // a commit reuses it for its own, longer text
        content.resize(length);
        std::size_t done = 0;
        const XErr err = xfileReadAll(file, content.data(), content.size(), done);
        return err == XERR_SUCCESS ? ConfFileRead::Done : ConfFileRead::ReadFailed;
    }

    XErr create(const std::string& path, std::unique_ptr<ConfOutput>& output) override {
        Xfile file;
        const XErr err = xfileOpen(file, path, XfileMode::WriteNew, XfileSharing::Private);
        if (err == XERR_SUCCESS) output = std::make_unique<DiskOutput>(std::move(file));
        return err;
    }

    XErr replace(const std::string& source, const std::string& destination) override {
        return xfileMoveWithRetry(source, destination);
    }

    void remove(const std::string& path) override {
        static_cast<void>(xfileDelete(path));  // the original failure is reported
    }
};

}  // namespace

ConfFiles& confDiskFiles() {
    static ConfFiles& files = *xunloadKeep<DiskFiles>();
    return files;
}
