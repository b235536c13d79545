// The app cache's file operations on the disk. Handles are not inherited: a child that inherited
// one would keep the file from being replaced.
#include "appc/AppcFiles.h"

#include <QString>
#include <cstddef>

#include "xpl/Xfile.h"
#include "xpl/Xunload.h"

namespace {

// File names contain app names, and a NUL in one would cut the path.
bool hasNoNul(const std::string& path) { return path.find('\0') == std::string::npos; }

// Moving a folder would move everything in it. A path that cannot be examined may be a folder.
bool canBeFolder(const std::string& path) {
    XfileAttributes attributes;
    const XErr err = xfileAttributes(path, attributes);
    return err == XERR_SUCCESS ? attributes.isFolder : err == XERR_ACCES;
}

class DiskFiles final : public AppcFiles {
 public:
    std::int32_t read(const std::string& path, std::string& content) override {
        const XfileReadErrors errors = xfileReadWithRetry(path, content);
        if (errors.open != 0) return errors.open;
        // Other read errors show when the content is parsed.
        return xerrIsHeld(xerrFromWindows(errors.bytes)) ? errors.bytes : 0;
    }

    XErr makeFolder(const std::string& path) override { return xfileCreateFolder(path); }

    bool isReplaceable(const std::string& path) override {
        XfileAttributes there;
        if (xfileAttributes(path, there) != XERR_SUCCESS) return true;  // the move decides
        return !there.isFolder && !there.isReadOnly;
    }

    AppcWrite write(const std::string& path, std::string_view text) override {
        Xfile file;
        if (xfileOpen(file, path, XfileMode::WriteNew, XfileSharing::Private) != XERR_SUCCESS) {
            return AppcWrite::OpenFailed;
        }
        std::size_t done = 0;
        const XErr err = xfileWriteAll(file, text.data(), text.size(), done);
        return err == XERR_SUCCESS ? AppcWrite::Done : AppcWrite::WriteFailed;
    }

    XErr replace(const std::string& source, const std::string& destination) override {
        if (!hasNoNul(source) || !hasNoNul(destination)) return XERR_INVAL;
        if (canBeFolder(source)) return XERR_ACCES;
        return xfileMoveWithRetry(source, destination);
    }

    void remove(const std::string& path) override {
        // The caller's work does not depend on the result.
        if (hasNoNul(path)) static_cast<void>(xfileDelete(path));
    }
};

}  // namespace

AppcFiles& appcDiskFiles() {
    static AppcFiles& files = *xunloadKeep<DiskFiles>();
    return files;
}

std::string appcErrorText(std::int32_t windowsError) {
    return qt_error_string(windowsError).toStdString();
}
