#ifndef CONF_CONFSTORE_H
#define CONF_CONFSTORE_H

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "conf/ConfCatalogue.h"
#include "conf/ConfFiles.h"
#include "conf/ConfView.h"
#include "utl/UtlFolders.h"
#include "xpl/Xattributes.h"
#include "xpl/Xlog.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xrcu.h"
#include "xpl/XsharedMutex.h"

// All files of this module log under one name.
constexpr XlogModule kConfLog{XlogTag::CONF, "Source/conf/Conf"};

// State of a configuration store, for this module and its tests. Other code uses Conf.h.
//
// Lock order: `lock`, then `fileLock`, then `viewLock`. Loads, commits and operations on whole
// instances hold `lock`; a commit holds `lock` and `fileLock` from before it opens its temporary
// file until after the move. Reads, sets and checks take only `viewLock`, so that a caller (a UI
// thread, say) never waits for a disk or for another program. `viewLock` is held only while memory
// is read or changed, never while logging.
struct ConfStore {
    ConfStore(const ConfCatalogue& catalogueToUse, ConfFiles& filesToUse)
        : catalogue(catalogueToUse), files(filesToUse), view(catalogueToUse) {}

    const ConfCatalogue& catalogue;
    ConfFiles& files;

    std::mutex lock;

    // The file's values over the defaults, and the pending changes. Loading never removes a key.
    XsharedMutex viewLock;
    ConfView view XTS_GUARDED_BY(viewLock);

    // Keys of deprecated properties that a load met; a commit drops them.
    ConfView::Names deprecated XTS_GUARDED_BY(lock);

    std::string path XTS_GUARDED_BY(lock);  // empty: no file

    // Serialises loads and commits across processes. Created when the store is initialised.
    std::string fileLockName = utlGlobalObjectName("conf");
    XmutexNamed fileLock;

    // Read without a lock.
    std::atomic<bool> allowDeprecated{false};
    Xrcu<std::string> currentInstance;  // name and "."
};

#endif
