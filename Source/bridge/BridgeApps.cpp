// The listing of installed apps.
#include "bridge/BridgeApps.h"

#include <mutex>

#include "appc/AppcJson.h"
#include "appc/AppcStore.h"
#include "bridge/BridgeLog.h"
#include "xpl/Xerr.h"

std::optional<std::string> bridge::bridgeGetInstalledApps(AppcStore& store,
                                                          const std::string& instance) {
    // Held to the end: another thread may be about to open the cache of another instance.
    const std::lock_guard<AppcLock> guard(store.lock);
    if (const XErr err = appcLibInit(store, instance); err != XERR_SUCCESS) {
        XLOG_E(kLog, "Error in appcLibInit, err = %s (%d)", xerrName(err).c_str(), err);
        return std::nullopt;
    }
    return appcListingText(store.apps, store.appcDir);
}
