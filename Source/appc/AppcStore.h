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

// Every file of this module logs as one.
constexpr XlogModule kAppcLog{XlogTag::APPC, "Source/appc/Appc"};

// Taken again by the thread that holds it: the operations that edit the cache save it while they
// hold the lock, and the listing opens it.
class XTS_CAPABILITY("mutex") AppcLock {
 public:
    void lock() XTS_ACQUIRE() { mutex_.lock(); }
    void unlock() XTS_RELEASE() { mutex_.unlock(); }

 private:
    std::recursive_mutex mutex_;
};

// State of an app cache; for the files of this module and its tests. Everybody else calls the
// functions of Appc.h.
//
// Lock order: `lock`, then `fileLock`. Nothing can take them the other way round: `fileLock` is
// itself guarded by `lock`, so that code which takes it without holding `lock` does not compile.
// Were the load to take `fileLock` first and `lock` for the apps, a loading and a saving thread
// could deadlock.
struct AppcStore {
    // `productDataDir` ends with a separator. Tests that run at the same time give their stores
    // lock names of their own.
    AppcStore(AppcFiles& filesToUse, std::string productDataDir, std::string productSharedDir,
              std::string lockPrefixToUse = "appc_")
        : files(filesToUse),
          dataDir(std::move(productDataDir)),
          sharedDir(std::move(productSharedDir)),
          lockPrefix(std::move(lockPrefixToUse)) {}

    // Where an instance keeps its cache: file and icons. Ends with "/".
    std::string instanceDir(const std::string& name) const {
        return dataDir + "Engine/" + name + "/AppCache/";
    }

    AppcFiles& files;
    const std::string dataDir;
    const std::string sharedDir;
    const std::string lockPrefix;  // of the file lock's name, before the instance's

    AppcLock lock;

    std::string instance XTS_GUARDED_BY(lock);
    std::string appcDir XTS_GUARDED_BY(lock);  // the instance's
    AppcApps apps XTS_GUARDED_BY(lock);

    // Whether the last load could not read the file since another process held it. `apps` then has
    // none of the file's, and any save, a sync's too, would lose those: until a load has succeeded,
    // every save is refused and no icon is touched. Such a load reads the file, finds none, or
    // deletes it. One that fails leaves this as it is, and so does appcLibInit for the same
    // instance; another instance has another file.
    bool isUnread XTS_GUARDED_BY(lock) = false;

    // Guards the file between processes. Before appcLibInit named it, taking it is fatal.
    XmutexNamed fileLock XTS_GUARDED_BY(lock);

    std::string filePath() const XTS_REQUIRES(lock) { return appcDir + "AppCache.json"; }
};

#endif
