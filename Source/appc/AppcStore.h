#ifndef APPC_APPCSTORE_H
#define APPC_APPCSTORE_H

#include <mutex>
#include <string>
#include <utility>

#include "appc/AppcApp.h"
#include "appc/AppcFiles.h"
#include "xpl/Xattributes.h"
#include "xpl/Xlog.h"
#include "xpl/XmutexNamed.h"

// All files of this module log under one name.
constexpr XlogModule kAppcLog{XlogTag::APPC, "Source/appc/Appc"};

// Recursive: edits save the cache, and the listing opens it, while they hold the lock.
class XTS_CAPABILITY("mutex") AppcLock {
 public:
    void lock() XTS_ACQUIRE() { mutex_.lock(); }
    void unlock() XTS_RELEASE() { mutex_.unlock(); }

 private:
    std::recursive_mutex mutex_;
};

// State of an app cache, for this module and its tests. Other code uses Appc.h.
//
// Lock order: `lock`, then `fileLock`. The compiler enforces it: `fileLock` is guarded by `lock`.
struct AppcStore {
    // `productDataDir` ends with a separator. Tests that run concurrently use different lock names.
    AppcStore(AppcFiles& filesToUse, std::string productDataDir, std::string productSharedDir,
              std::string lockPrefixToUse = "appc_")
        : files(filesToUse),
          dataDir(std::move(productDataDir)),
          sharedDir(std::move(productSharedDir)),
          lockPrefix(std::move(lockPrefixToUse)) {}

    // Folder of an instance's cache file and icons. Ends with "/".
    std::string instanceDir(const std::string& name) const {
        return dataDir + "Engine/" + name + "/AppCache/";
    }

    AppcFiles& files;
    const std::string dataDir;
    const std::string sharedDir;
    const std::string lockPrefix;  // of the file lock's name; the instance's name follows

    AppcLock lock;

    std::string instance XTS_GUARDED_BY(lock);
    std::string appcDir XTS_GUARDED_BY(lock);  // the instance's
    AppcApps apps XTS_GUARDED_BY(lock);

    // Set when the last load could not read the file because another process used it. `apps` then
    // lacks the file's apps, and a save (a sync's too) would lose them: until a load succeeds,
    // saves are refused and icons are not touched. A load succeeds when it reads the file, finds
    // none, or deletes it. Neither a failed load nor appcLibInit for the same instance clears this;
    // another instance has another file.
    bool isUnread XTS_GUARDED_BY(lock) = false;

    // Guards the file across processes. Locking it before appcLibInit is fatal.
    XmutexNamed fileLock XTS_GUARDED_BY(lock);

    std::string filePath() const XTS_REQUIRES(lock) { return appcDir + "AppCache.json"; }
};

#endif
