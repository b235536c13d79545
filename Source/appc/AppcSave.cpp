// The save: write a temporary file, flush it and put it in place of the old one under the
// machine-wide lock.
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

// Two processes may write at the same time, since only the replacement is locked: each has a
// temporary file of its own.
std::string temporaryPath(const std::string& path) {
    return path + "." + std::to_string(xsystemProcessId()) + "-temp";
}

// What can be known before anything is written: a folder, or a file that must not be written, does
// not give way to the new one.
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
    // No later save has its name, so that what is left of it would stay for good.
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
