#ifndef CONF_CONFSTORE_H
#define CONF_CONFSTORE_H

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "conf/ConfCatalogue.h"
#include "conf/ConfFiles.h"
#include "conf/ConfNames.h"
#include "conf/ConfValueMap.h"
#include "utl/UtlFolders.h"
#include "xpl/Xattributes.h"
#include "xpl/XmutexNamed.h"

// State of a configuration store; for the files of this module and its tests. Everybody else calls
// the functions of Conf.h.
//
// Lock order: `lock`, then `fileLock`. A commit holds both from before it opens its temporary file
// until after the move.
struct ConfStore {
    ConfStore(const ConfCatalogue& catalogueToUse, ConfFiles& filesToUse)
        : catalogue(catalogueToUse), files(filesToUse) {}

    const ConfCatalogue& catalogue;
    ConfFiles& files;

    std::mutex lock;

    // The committed view: what the file holds, over the defaults. Loading never removes a key.
    ConfValueMap values XTS_GUARDED_BY(lock);

    // Set and not committed yet; removed and not committed yet.
    ConfValueMap pending XTS_GUARDED_BY(lock);
    std::set<std::string, std::less<>> removals XTS_GUARDED_BY(lock);

    // Keys of deprecated properties that were seen; a commit drops them.
    std::set<std::string, std::less<>> deprecated XTS_GUARDED_BY(lock);

    ConfNames instances XTS_GUARDED_BY(lock);
    std::string path XTS_GUARDED_BY(lock);  // empty: no file

    // Orders loads and commits between processes; named when the store is initialised.
    std::string fileLockName = utlGlobalObjectName("conf");
    XmutexNamed fileLock;

    // Read without the lock.
    std::atomic<bool> allowDeprecated{false};
    std::shared_ptr<const std::string> currentInstance;  // name and "."; atomic functions only
};

#endif
