// The save: write a temporary file, flush it and move it over the old one under the machine-wide
// lock.
#include <mutex>
#include <string>
#include <string_view>

#include "appc/Appc.h"
#include "appc/AppcFiles.h"
#include "appc/AppcJson.h"
#include "appc/AppcStore.h"
#include "xpl/Xattributes.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xerr.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xsystem.h"
#include "xpl/XtemporaryFile.h"

namespace {

// Unique per process: only the move is under the machine-wide lock, so two processes may write at
// the same time.
std::string temporaryPath(const std::string& path) {
    return path + "." + std::to_string(xsystemProcessId()) + "-temp";
}

// Checks first that the target can be replaced: a folder and a read-only file cannot.
AppcWrite writeBeside(AppcFiles& files, const std::string& path, XtemporaryFile& temporary,
                      std::string_view text) {
    if (!files.isReplaceable(path)) return AppcWrite::OpenFailed;
    temporary.setExists(true);
    const AppcWrite written = files.write(temporary.path(), text);
    temporary.setExists(written != AppcWrite::OpenFailed);
    return written;
}

XErr replaceFile(AppcStore& store, const std::string& path, XtemporaryFile& temporary)
    XTS_REQUIRES(store.lock) {
    const XnamedGuard otherProcesses(store.fileLock, kAppcLog, "appcSaveToFile");
    return temporary.moveOnto(path);
}

}  // namespace

XErr appcSaveToFile(AppcStore& store) {
    const std::lock_guard<AppcLock> guard(store.lock);
    const std::string path = store.filePath();
    if (store.isUnread) {
        XLOG_E(kAppcLog, "AppCache file %s could not be read, not saving over it", path.c_str());
        return XERR_FAILURE;
    }
    const std::string text = appcFileText(store.apps);
    if (const XErr err = store.files.makeFolder(store.appcDir); err != XERR_SUCCESS) {
        XLOG_E(kAppcLog, "Failed to create dir %s, err: %s [%d]", store.appcDir.c_str(),
               xerrName(err).c_str(), err);
        return err;
    }
    // The name has this process's id: no other process would overwrite a file left behind.
    XtemporaryFile temporary(store.files, temporaryPath(path), kAppcLog, "appcSaveToFile");
    const AppcWrite written = writeBeside(store.files, path, temporary, text);
    if (written == AppcWrite::OpenFailed) {
        XLOG_E(kAppcLog, "Cannot open AppCache file %s for writing", path.c_str());
        return XERR_FAILURE;
    }
    if (written == AppcWrite::Done && replaceFile(store, path, temporary) == XERR_SUCCESS) {
        return XERR_SUCCESS;
    }
    XLOG_E(kAppcLog, "Error in writing to AppCache file %s failed", path.c_str());
    return XERR_FAILURE;
}
