#ifndef BRIDGE_BRIDGEIPCCLBK_H
#define BRIDGE_BRIDGEIPCCLBK_H

#include <bridge/bridge.h>

// The host's functions for events, and what the library does itself before it calls them.

// One for each event, in slot order; any may be null.
struct BridgeCallbacks {
    bridgeOnAppInstalled onAppInstalled;
    bridgeOnAppUninstalled onAppUninstalled;
    bridgeOnApkInstallCompleted onApkInstallCompleted;
    bridgeOnInstanceListUpdated onInstanceListUpdated;
    bridgeInstallImageProgress installImageProgress;
    bridgeOnCreateInstanceCompleted onCreateInstanceCompleted;
    bridgeOnInstanceConfigurationChanged onInstanceConfigurationChanged;
    bridgeOnAppDisplayed onAppDisplayed;
    bridgeOnAccountListUpdated onAccountListUpdated;
};

// Replaces all nine, from any thread; an event that is being dispatched may still see the old ones.
void bridgeSetCallbacks(const BridgeCallbacks& callbacks);

// Each logs the event, does the library's own work for it and calls the host's function if there is
// one. They run on the event server's thread; texts are the packet's own.
void bridgeOnAppInstalledClbk(const char* instance, const char* package, const char* activity,
                              const char* appLabel, bridge_i32 versionCode, const char* versionName,
                              const char* iconFilePath, bridge_bool isUpdate);
void bridgeOnAppUninstalledClbk(const char* instance, const char* package);
void bridgeOnApkInstallCompletedClbk(const char* instance, bridge_i32 status,
                                     const char* apkFilePath);

// Loads the configuration again first. Slot 4 is called exactly when slot 3 is set, and a null slot
// 4 is fatal then: hosts register both or none.
void bridgeOnInstanceListUpdatedClbk();

// With status 2 the instance list is announced first.
void bridgeInstallImageProgressClbk(const char* imageName, bridge_i32 status, double progress);

void bridgeOnCreateInstanceCompletedClbk(bridge_i32 status, const char* instance);

// Loads the configuration again first.
void bridgeOnInstanceConfigurationChangedClbk(const char* instance);

void bridgeOnAppDisplayedClbk(const char* instance, const char* package);
void bridgeOnAccountListUpdatedClbk(const char* instance, const char* emailId, bridge_i32 action);

#endif
