// Changes of the cache. Each holds the lock from reading the apps until the file is saved.
#include <cstdint>
#include <mutex>
#include <string>

#include "appc/Appc.h"
#include "appc/AppcApp.h"
#include "appc/AppcJson.h"
#include "appc/AppcStore.h"
#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"

namespace {

// A missing icon is not an error.
void moveIcon(AppcStore& store, const std::string& iconName, const std::string& iconFileName)
    XTS_REQUIRES(store.lock) {
    if (iconName.empty() || store.isUnread) return;
    static_cast<void>(
        store.files.replace(store.sharedDir + "/" + iconName, store.appcDir + iconFileName));
}

}  // namespace

XErr appcSyncInstalledApps(AppcStore& store, const char* json) {
    const std::lock_guard<AppcLock> guard(store.lock);
    QJsonArray apps;
    if (json == nullptr || !appcParseSyncList(json, apps)) {
        XLOG_E(kAppcLog, "%s: Error in reading appList as json array", __func__);
        return XERR_FAILURE;
    }
    if (appcReadFromJsonObj(store, apps) != XERR_SUCCESS) {
        XLOG_E(kAppcLog, "%s: Error in reading json object", __func__);
        return XERR_FAILURE;
    }
    return appcSaveToFile(store);
}

XErr appcUpdateApp(AppcStore& store, const std::string& package, const std::string& activity,
                   const std::string& appLabel, std::int32_t versionCode,
                   const std::string& versionName, const std::string& iconName) {
    const std::lock_guard<AppcLock> guard(store.lock);
    const AppcApp app{activity, appLabel, versionCode, versionName, appcIconFileName(package)};
    store.apps.insert_or_assign(package, app);
    moveIcon(store, iconName, app.iconFileName);
    return appcSaveToFile(store);
}

XErr appcRemoveApp(AppcStore& store, const std::string& package) {
    const std::lock_guard<AppcLock> guard(store.lock);
    const auto found = store.apps.find(package);
    if (found == store.apps.end()) return XERR_SUCCESS;
    const std::string icon = store.appcDir + found->second.iconFileName;
    store.apps.erase(found);
    if (!store.isUnread) store.files.remove(icon);
    return appcSaveToFile(store);
}
