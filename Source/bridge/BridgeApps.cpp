// The listing of installed apps.
#include "bridge/BridgeApps.h"

#include <mutex>

#include "appc/AppcJson.h"
#include "appc/AppcStore.h"
#include "bridge/BridgeEntry.h"
#include "xpl/Xerr.h"

std::optional<std::string> internal::bridgeGetInstalledApps(AppcStore& store,
                                                            const std::string& instance) {
    std::string listing;
    if (const XErr err = appcListApps(store, instance, listing); err != XERR_SUCCESS) {
        XLOG_E(kLog, "Error in appcLibInit, err = %s (%d)", xerrName(err).c_str(), err);
        return std::nullopt;
    }
    return listing;
}
