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

// Every file of this module logs as one.
constexpr XlogModule kConfLog{XlogTag::CONF, "Source/conf/Conf"};

// State of a configuration store; for the files of this module and its tests. Everybody else calls
// the functions of Conf.h.
//
// Lock order: `lock`, then `fileLock`, then `viewLock`. Loads, commits and the operations on whole
// instances hold `lock`, a commit both from before it opens its temporary file until after the
// move. Reads, sets and checks take the view's lock alone, so that whoever calls them, a window's
// thread perhaps, never waits for a disk or for another program. It is held while memory is read or
// changed, never while a line is logged.
struct ConfStore {
    ConfStore(const ConfCatalogue& catalogueToUse, ConfFiles& filesToUse)
        : catalogue(catalogueToUse), files(filesToUse), view(catalogueToUse) {}

    const ConfCatalogue& catalogue;
    ConfFiles& files;

    std::mutex lock;

    // What the file holds, over the defaults, and what is not committed yet. Loading never removes
    // a key.
    XsharedMutex viewLock;
    ConfView view XTS_GUARDED_BY(viewLock);

    // Keys of deprecated properties that were seen; a commit drops them.
    ConfView::Names deprecated XTS_GUARDED_BY(lock);

    std::string path XTS_GUARDED_BY(lock);  // empty: no file

    // Orders loads and commits between processes; named when the store is initialised.
    std::string fileLockName = utlGlobalObjectName("conf");
    XmutexNamed fileLock;

    // Read without a lock.
    std::atomic<bool> allowDeprecated{false};
    Xrcu<std::string> currentInstance;  // name and "."
};

#endif
