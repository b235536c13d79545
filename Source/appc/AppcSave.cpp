// The save: write a temporary file, flush it and put it in place of the old one under the
// machine-wide lock.
#include "appc/Appc.h"
#include "appc/AppcJson.h"
#include "appc/AppcLog.h"
#include "appc/AppcStore.h"
#include "xpl/Xsystem.h"

namespace {

// Two processes may write at the same time, since only the replacement is locked: each has a
// temporary file of its own.
std::string temporaryPath(const std::string& path) {
    return path + "." + std::to_string(xsystemProcessId()) + "-temp";
}

XErr replaceFile(AppcStore& store, const std::string& temporary) XTS_REQUIRES(store.lock) {
    const std::lock_guard<XmutexNamed> otherProcesses(store.fileLock);
    return store.files.move(temporary, store.filePath());
}

}  // namespace

XErr appcSaveToFile(AppcStore& store) {
    const std::lock_guard<AppcLock> guard(store.lock);
    const std::string text = appcFileText(store.apps);
    if (const XErr err = store.files.makeFolder(store.appcDir); err != XERR_SUCCESS) {
        XLOG_E(kLog, "Failed to create dir %s, err: %s [%d]", store.appcDir.c_str(),
               xerrName(err).c_str(), err);
        return err;
    }
    const std::string path = store.filePath();
    const std::string temporary = temporaryPath(path);
    const AppcWrite written = store.files.write(temporary, text);
    if (written == AppcWrite::OpenFailed) {
        XLOG_E(kLog, "Cannot open AppCache file %s for writing", path.c_str());
        return XERR_FAILURE;
    }
    if (written == AppcWrite::Done && replaceFile(store, temporary) == XERR_SUCCESS) {
        return XERR_SUCCESS;
    }
    XLOG_E(kLog, "Error in writing to AppCache file %s failed", path.c_str());
    store.files.remove(temporary);
    return XERR_FAILURE;
}
