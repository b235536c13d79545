// Copies the cache of an instance to a new one.
#include <mutex>
#include <string>

#include "appc/Appc.h"
#include "appc/AppcStore.h"
#include "utl/UtlCopy.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"
#include "xpl/XmutexNamed.h"

XErr appcCopyInstance(AppcStore& store, const std::string& baseInstance,
                      const std::string& newInstance) {
    const std::string baseDir = store.instanceDir(baseInstance);
    const std::string newDir = store.instanceDir(newInstance);
    if (xfileExists(baseDir) != XERR_SUCCESS) {
        XLOG_E(kAppcLog, "Base instance directory %s doesn't exist", baseDir.c_str());
        return XERR_FAILURE;
    }
    if (xfileCreateNewFolder(newDir) != XERR_SUCCESS) {
        XLOG_E(kAppcLog, "Failed to create directory %s for new instance %s", newDir.c_str(),
               newInstance.c_str());
        return XERR_FAILURE;
    }
    const std::lock_guard<AppcLock> guard(store.lock);
    const XnamedGuard otherProcesses(store.fileLock, kAppcLog, "appcCopyInstance");
    // Failures are logged; the new instance lacks those files.
    static_cast<void>(utlCopyRecursive(baseDir, newDir));
    return XERR_SUCCESS;
}
