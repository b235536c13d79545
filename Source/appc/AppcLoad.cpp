// Opening, loading and queries.
#include <cstdint>
#include <list>
#include <mutex>
#include <string>

#include "appc/Appc.h"
#include "appc/AppcApp.h"
#include "appc/AppcFiles.h"
#include "appc/AppcJson.h"
#include "appc/AppcStore.h"
#include "utl/UtlFolders.h"
#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xunload.h"

namespace {

// A file that is being replaced or is in use may refuse to be examined. It does not count as
// missing: the open waits for the other process.
bool isMissing(const std::string& path) {
    const XErr err = xfileExists(path);
    return err != XERR_SUCCESS && err != XERR_ACCES && !xerrIsHeld(err);
}

// The next save writes a fresh file.
void discard(AppcStore& store) XTS_REQUIRES(store.lock) {
    store.files.remove(store.filePath());
    store.apps.clear();
    store.isUnread = false;
}

// Deletes a file that cannot be opened, unless another process holds it.
void giveUp(AppcStore& store, std::int32_t windowsError) XTS_REQUIRES(store.lock) {
    const std::string path = store.filePath();
    const std::string error = appcErrorText(windowsError);
    if (!xerrIsHeld(xerrFromWindows(windowsError))) {
        XLOG_E(kAppcLog, "Could not open %s, error: %s, deleting the file", path.c_str(),
               error.c_str());
        discard(store);
        return;
    }
    store.apps.clear();
    store.isUnread = true;
    XLOG_E(kAppcLog, "Could not open %s, error: %s, keeping the file", path.c_str(), error.c_str());
}

XErr loadUnderFileLock(AppcStore& store) XTS_REQUIRES(store.lock) {
    const XnamedGuard otherProcesses(store.fileLock, kAppcLog, "appcLoadFromFile");
    const std::string path = store.filePath();
    std::string content;
    if (const std::int32_t windowsError = store.files.read(path, content); windowsError != 0) {
        giveUp(store, windowsError);
        return XERR_SUCCESS;
    }
    QJsonArray array;
    if (!appcParseArray(content, array)) {
        XLOG_E(kAppcLog, "Could not create JsonDocument from %s deleting the files", path.c_str());
        discard(store);
        return XERR_SUCCESS;
    }
    const XErr err = appcReadFromJsonObj(store, array);
    if (err == XERR_SUCCESS) store.isUnread = false;
    return err;
}

template <typename Field>
void copyTo(Field* out, const Field& field) {
    if (out != nullptr) *out = field;
}

}  // namespace

AppcStore& appcStore() {
    static AppcStore& store =
        *xunloadKeep<AppcStore>(appcDiskFiles(), utlGetDataDir(), utlSharedDir());
    return store;
}

XErr appcLibInit(AppcStore& store, const std::string& instance) {
    const std::lock_guard<AppcLock> guard(store.lock);
    if (instance != store.instance) store.isUnread = false;
    store.instance = instance;
    store.appcDir = store.instanceDir(instance);
    store.apps.clear();  // without a file, the other instance's apps must not show
    const std::string lockName = utlGlobalObjectName(store.lockPrefix + instance);
    if (const XErr err = store.fileLock.init(lockName); err != XERR_SUCCESS) return err;
    const XErr err = appcLoadFromFile(store);
    if (err != XERR_SUCCESS) XLOG_E(kAppcLog, "Failed to load app cache from file");
    return err;
}

XErr appcLoadFromFile(AppcStore& store) {
    const std::lock_guard<AppcLock> guard(store.lock);
    if (isMissing(store.filePath())) {
        XLOG_W(kAppcLog, "File %s not present", store.filePath().c_str());
        store.isUnread = false;
        return XERR_SUCCESS;
    }
    return loadUnderFileLock(store);
}

bool appcRefusesSaves(AppcStore& store) {
    const std::lock_guard<AppcLock> guard(store.lock);
    return store.isUnread;
}

XErr appcReadFromJsonObj(AppcStore& store, const QJsonArray& apps) {
    const std::lock_guard<AppcLock> guard(store.lock);
    const AppcFlaw flaw = appcReadApps(apps, store.apps);
    switch (flaw.kind) {
        case AppcFlaw::None:
            return XERR_SUCCESS;
        case AppcFlaw::NotAnObject:
            break;
        case AppcFlaw::NotDefined:
            XLOG_E(kAppcLog, "%s: %d: json value %s: Not defined", __func__, __LINE__, flaw.key);
            break;
        case AppcFlaw::InvalidType:
            XLOG_E(kAppcLog, "%s: %d: json value %s: Invalid type %d expected %s", __func__,
                   __LINE__, flaw.key, static_cast<int>(flaw.type), flaw.expected);
            break;
    }
    return XERR_FAILURE;
}

XErr appcGetApp(AppcStore& store, const std::string& package, std::string* activity,
                std::string* appLabel, std::int32_t* versionCode, std::string* versionName,
                std::string* iconFileName) {
    const std::lock_guard<AppcLock> guard(store.lock);
    const auto found = store.apps.find(package);
    if (found == store.apps.end()) return XERR_NOENT;
    const AppcApp& app = found->second;
    copyTo(activity, app.activity);
    copyTo(appLabel, app.appLabel);
    copyTo(versionCode, app.versionCode);
    copyTo(versionName, app.versionName);
    copyTo(iconFileName, app.iconFileName);
    return XERR_SUCCESS;
}

XErr appcListApps(AppcStore& store, const std::string& instance, std::string& listing) {
    // Held to the end, so that no other thread opens another instance's cache in between.
    const std::lock_guard<AppcLock> guard(store.lock);
    if (const XErr err = appcLibInit(store, instance); err != XERR_SUCCESS) return err;
    listing = appcListingText(store.apps, store.appcDir);
    return XERR_SUCCESS;
}

void appcGetPackages(AppcStore& store, std::list<std::string>& packages) {
    const std::lock_guard<AppcLock> guard(store.lock);
    for (const auto& entry : store.apps) packages.push_back(entry.first);
}
