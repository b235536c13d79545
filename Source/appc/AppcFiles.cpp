// The app cache's file operations on the disk. Files are inheritable: the gate is held while one is
// open, so that no child process keeps a file that is going to be replaced.
#include "appc/AppcFiles.h"

#include <QFileInfo>
#include <QString>
#include <limits>

#include "xpl/Xfile.h"
#include "xpl/XinheritGate.h"
#include "xpl/Xunload.h"

namespace {

constexpr std::int64_t kLargestFile = std::numeric_limits<std::int32_t>::max();

void readOpen(Xfile& file, std::string& content) {
    std::int64_t size = 0;
    if (xfileSize(file, size) != XERR_SUCCESS || size > kLargestFile) return;
    content.resize(static_cast<std::size_t>(size));
    std::size_t done = 0;
    // What is missing shows when the content is parsed.
    static_cast<void>(xfileReadAll(file, content.data(), content.size(), done));
    content.resize(done);
}

// App names make file names, and a NUL in one would end the path before the rest of it.
bool isWhole(const std::string& path) { return path.find('\0') == std::string::npos; }

// A folder cannot be opened as a file. Moving one would take everything in it along.
bool isFolder(const std::string& path) {
    Xfile file;
    return xfileOpen(file, path, XfileMode::Read) == XERR_ACCES;
}

class DiskFiles final : public AppcFiles {
 public:
    XErr read(const std::string& path, std::string& content) override {
        const std::lock_guard<std::mutex> children(xinheritGate());
        content.clear();
        Xfile file;
        const XErr err = xfileOpen(file, path, XfileMode::Read);
        if (err == XERR_SUCCESS) readOpen(file, content);
        return err;
    }

    XErr makeFolder(const std::string& path) override { return xfileCreateFolder(path); }

    bool isReplaceable(const std::string& path) override {
        const QFileInfo there(QString::fromStdString(xfileSystemPath(path)));
        return !there.exists() || (there.isFile() && there.isWritable());
    }

    AppcWrite write(const std::string& path, std::string_view text) override {
        const std::lock_guard<std::mutex> children(xinheritGate());
        Xfile file;
        if (xfileOpen(file, path, XfileMode::WriteNew) != XERR_SUCCESS) {
            return AppcWrite::OpenFailed;
        }
        std::size_t done = 0;
        const XErr err = xfileWriteAll(file, text.data(), text.size(), done);
        return err == XERR_SUCCESS ? AppcWrite::Done : AppcWrite::WriteFailed;
    }

    XErr move(const std::string& source, const std::string& destination) override {
        if (!isWhole(source) || !isWhole(destination)) return XERR_INVAL;
        const std::lock_guard<std::mutex> children(xinheritGate());
        if (isFolder(source)) return XERR_ACCES;
        return xfileMove(source, destination);
    }

    void remove(const std::string& path) override {
        // Nobody is told: what the file was for goes on without it.
        if (isWhole(path)) static_cast<void>(xfileDelete(path));
    }
};

struct WindowsRow {
    int windowsError;
    XErr code;
};

constexpr WindowsRow kWindowsRows[] = {
#define APPC_ROW(windowsError, windowsName, name) {windowsError, XERR_##name},
    XERR_WINDOWS_ERRORS(APPC_ROW)
#undef APPC_ROW
};

// The Windows error that a status stands for; of several, the most usual one.
int windowsErrorOf(XErr err) {
    for (const WindowsRow& row : kWindowsRows) {
        if (row.code == err) return row.windowsError;
    }
    return err - XERR_WINDOWS_BASE;
}

}  // namespace

AppcFiles& appcDiskFiles() {
    static AppcFiles& files = xunloadKeep<DiskFiles>();
    return files;
}

std::string appcErrorText(XErr err) { return qt_error_string(windowsErrorOf(err)).toStdString(); }
