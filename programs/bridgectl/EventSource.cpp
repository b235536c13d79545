// The library's callbacks. They run on its thread: each copies its event and returns. Memory that
// is short ends the program, since no exception may go through the library.
#include "EventSource.h"

#include <bridge/bridge.h>

#include <utility>

#include "Event.h"

namespace {

using Fields = decltype(Event::fields);

void push(EventKind kind, Fields fields) noexcept {
    eventQueue().push({localTimeNow(), kind, std::move(fields)});
}

void BRIDGE_CALL onAppInstalled(const char* instance, const char* package, const char* activity,
                                const char* appLabel, bridge_i32 versionCode,
                                const char* versionName, const char* iconFilePath,
                                bridge_bool isUpdate) noexcept {
    push(EventKind::AppInstalled, {{"instance", instance},
                                   {"package", package},
                                   {"activity", activity},
                                   {"appLabel", appLabel},
                                   {"versionCode", versionCode},
                                   {"versionName", versionName},
                                   {"iconFilePath", iconFilePath},
                                   {"isUpdate", isUpdate != 0}});
}

void BRIDGE_CALL onAppUninstalled(const char* instance, const char* package) noexcept {
    push(EventKind::AppUninstalled, {{"instance", instance}, {"package", package}});
}

void BRIDGE_CALL onApkInstallCompleted(const char* instance, bridge_i32 status,
                                       const char* apkFilePath) noexcept {
    push(EventKind::ApkInstallCompleted,
         {{"instance", instance}, {"status", status}, {"apkFilePath", apkFilePath}});
}

void BRIDGE_CALL onInstanceListUpdated() noexcept { push(EventKind::InstanceListUpdated, {}); }

void BRIDGE_CALL onImageInstallProgress(const char* imageName, bridge_i32 status,
                                        double progress) noexcept {
    push(EventKind::ImageInstallProgress,
         {{"imageName", imageName}, {"status", status}, {"progress", progress}});
}

void BRIDGE_CALL onCreateInstanceCompleted(bridge_i32 status, const char* instance) noexcept {
    push(EventKind::CreateInstanceCompleted, {{"status", status}, {"instance", instance}});
}

void BRIDGE_CALL onInstanceConfigurationChanged(const char* instance) noexcept {
    push(EventKind::InstanceConfigurationChanged, {{"instance", instance}});
}

void BRIDGE_CALL onAppDisplayed(const char* instance, const char* package) noexcept {
    push(EventKind::AppDisplayed, {{"instance", instance}, {"package", package}});
}

void BRIDGE_CALL onAccountListUpdated(const char* instance, const char* emailId,
                                      bridge_i32 action) noexcept {
    push(EventKind::AccountListUpdated,
         {{"instance", instance}, {"emailId", emailId}, {"action", action}});
}

}  // namespace

EventQueue& eventQueue() {
    static EventQueue& queue = *new EventQueue;
    return queue;
}

void startEvents() {
    bridgeRegisterCallbacks(onAppInstalled, onAppUninstalled, onApkInstallCompleted,
                            onInstanceListUpdated, onImageInstallProgress,
                            onCreateInstanceCompleted, onInstanceConfigurationChanged,
                            onAppDisplayed, onAccountListUpdated);
}
