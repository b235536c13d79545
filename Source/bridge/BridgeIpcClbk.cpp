// Calls the host's functions for decoded events.
#include "bridge/BridgeIpcClbk.h"

#include "conf/Conf.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xerr.h"
#include "xpl/Xlog.h"
#include "xpl/Xseqlock.h"

namespace {

constexpr XlogModule kLog{XlogTag::BRIDGE, "Source/bridge/BridgeIpcClbk"};

// The sender's status of an installed image.
constexpr bridge_i32 kImageInstalled = 2;

Xseqlock<BridgeCallbacks> callbacks;

// The event is reported even when the configuration cannot be loaded; the load logs the reason.
void reloadConfiguration(const char* self) {
    static_cast<void>(xcatchAll(kLog, self, XERR_FAILURE, [] { return confReload(confStore()); }));
}

}  // namespace

void bridgeSetCallbacks(const BridgeCallbacks& replacement) { callbacks.set(replacement); }

void bridgeOnAppInstalledClbk(const char* instance, const char* package, const char* activity,
                              const char* appLabel, bridge_i32 versionCode, const char* versionName,
                              const char* iconFilePath, bridge_bool isUpdate) {
    XLOG_I(kLog,
           "%s called: instance %s, package %s, activity %s, appLabel %s, versionCode %d, "
           "versionName %s, iconFilePath %s, isUpdate %d",
           __func__, instance, package, activity, appLabel, versionCode, versionName, iconFilePath,
           isUpdate);
    if (const auto call = callbacks.get().onAppInstalled) {
        call(instance, package, activity, appLabel, versionCode, versionName, iconFilePath,
             isUpdate);
    }
}

void bridgeOnAppUninstalledClbk(const char* instance, const char* package) {
    XLOG_I(kLog, "%s called: instance %s, package %s", __func__, instance, package);
    if (const auto call = callbacks.get().onAppUninstalled) call(instance, package);
}

void bridgeOnApkInstallCompletedClbk(const char* instance, bridge_i32 status,
                                     const char* apkFilePath) {
    XLOG_I(kLog, "%s called: instance %s, status %d, apkFilePath %s", __func__, instance, status,
           apkFilePath);
    if (const auto call = callbacks.get().onApkInstallCompleted) {
        call(instance, status, apkFilePath);
    }
}

// Slot 4 is called exactly when slot 3 is set; a null slot 4 is then fatal. Hosts must register
// both or neither.
void bridgeOnInstanceListUpdatedClbk() {
    XLOG_I(kLog, "%s called:", __func__);
    reloadConfiguration(__func__);
    const BridgeCallbacks now = callbacks.get();
    if (now.onApkInstallCompleted == nullptr) return;
    if (now.onInstanceListUpdated == nullptr) XLOG_FATAL(kLog);
    now.onInstanceListUpdated();
}

void bridgeInstallImageProgressClbk(const char* imageName, bridge_i32 status, double progress) {
    XLOG_I(kLog, "%s called: imageName %s, status %d, progress %f", __func__, imageName, status,
           progress);
    if (status == kImageInstalled) bridgeOnInstanceListUpdatedClbk();
    if (const auto call = callbacks.get().installImageProgress) call(imageName, status, progress);
}

void bridgeOnCreateInstanceCompletedClbk(bridge_i32 status, const char* instance) {
    XLOG_I(kLog, "%s called: status %d, instance %s", __func__, status, instance);
    if (const auto call = callbacks.get().onCreateInstanceCompleted) call(status, instance);
}

void bridgeOnInstanceConfigurationChangedClbk(const char* instance) {
    XLOG_I(kLog, "%s called: instance %s", __func__, instance);
    reloadConfiguration(__func__);
    if (const auto call = callbacks.get().onInstanceConfigurationChanged) call(instance);
}

void bridgeOnAppDisplayedClbk(const char* instance, const char* package) {
    XLOG_I(kLog, "%s called: instance %s, package %s", __func__, instance, package);
    if (const auto call = callbacks.get().onAppDisplayed) call(instance, package);
}

void bridgeOnAccountListUpdatedClbk(const char* instance, const char* emailId, bridge_i32 action) {
    XLOG_I(kLog, "%s called: instance %s, emailId %s, action = %d", __func__, instance, emailId,
           action);
    if (const auto call = callbacks.get().onAccountListUpdated) call(instance, emailId, action);
}
