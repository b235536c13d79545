// The save: write a temporary file, flush it and put it in place of the old one under the
// machine-wide lock.
#include <mutex>
#include <string>
#include <string_view>

#include "appc/Appc.h"
#include "appc/AppcFiles.h"
#include "appc/AppcJson.h"
#include "appc/AppcLog.h"
#include "appc/AppcStore.h"
#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"
#include "xpl/Xfence.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xsystem.h"

namespace {

// Two processes may write at the same time, since only the replacement is locked: each has a
// temporary file of its own.
std::string temporaryPath(const std::string& path) {
    return path + "." + std::to_string(xsystemProcessId()) + "-temp";
}

// The new file, which is gone again at the end unless it took the old one's place: no later save
// has its name.
class TemporaryFile {
 public:
    TemporaryFile(AppcFiles& files, const std::string& path)
        : files_(files), path_(temporaryPath(path)) {}
    ~TemporaryFile() {
        if (!exists_) return;
        xfence(kLog, "appcSaveToFile", false, [this] {
            files_.remove(path_);
            return true;
        });
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    AppcWrite write(std::string_view text) {
        exists_ = true;  // until it is known better: memory can run out behind the file's creation
        const AppcWrite written = files_.write(path_, text);
        exists_ = written != AppcWrite::OpenFailed;
        return written;
    }

    [[nodiscard]] XErr moveOnto(const std::string& path) {
        const XErr err = files_.move(path_, path);
        exists_ = err != XERR_SUCCESS;
        return err;
    }

 private:
    AppcFiles& files_;
    const std::string path_;
    bool exists_ = false;
};

// What can be known before anything is written: a folder, or a file that must not be written, does
// not give way to the new one.
AppcWrite writeBeside(AppcFiles& files, const std::string& path, TemporaryFile& temporary,
                      std::string_view text) {
    return files.isReplaceable(path) ? temporary.write(text) : AppcWrite::OpenFailed;
}

XErr replaceFile(AppcStore& store, const std::string& path, TemporaryFile& temporary)
    XTS_REQUIRES(store.lock) {
    const std::lock_guard<XmutexNamed> otherProcesses(store.fileLock);
    return temporary.moveOnto(path);
}

}  // namespace

XErr appcSaveToFile(AppcStore& store) {
    const std::lock_guard<AppcLock> guard(store.lock);
    const std::string path = store.filePath();
    if (store.isUnread) {
        XLOG_E(kLog, "AppCache file %s could not be read, not saving over it", path.c_str());
        return XERR_FAILURE;
    }
    const std::string text = appcFileText(store.apps);
    if (const XErr err = store.files.makeFolder(store.appcDir); err != XERR_SUCCESS) {
        XLOG_E(kLog, "Failed to create dir %s, err: %s [%d]", store.appcDir.c_str(),
               xerrName(err).c_str(), err);
        return err;
    }
    TemporaryFile temporary(store.files, path);
    const AppcWrite written = writeBeside(store.files, path, temporary, text);
    if (written == AppcWrite::OpenFailed) {
        XLOG_E(kLog, "Cannot open AppCache file %s for writing", path.c_str());
        return XERR_FAILURE;
    }
    if (written == AppcWrite::Done && replaceFile(store, path, temporary) == XERR_SUCCESS) {
        return XERR_SUCCESS;
    }
    XLOG_E(kLog, "Error in writing to AppCache file %s failed", path.c_str());
    return XERR_FAILURE;
}
