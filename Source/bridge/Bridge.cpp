// The exported functions. Each checks its arguments, makes one call inside bridgeCatchAll and
// returns the result.
#include <bridge/bridge.h>

#include "appc/Appc.h"
#include "bridge/BridgeApps.h"
#include "bridge/BridgeConf.h"
#include "bridge/BridgeEntry.h"
#include "bridge/BridgeEvents.h"
#include "bridge/BridgeInit.h"
#include "bridge/BridgeLaunch.h"
#include "bridge/BridgeMemory.h"
#include "bridge/BridgeShutdown.h"
#include "conf/Conf.h"
#include "xpl/Xerr.h"

extern "C" {

bridge_i32 bridgeApiInit(const char* clientId) { return bridgeApiInitEx(clientId, 0, 0, nullptr); }

bridge_i32 bridgeApiInitEx(const char* clientId, bridge_bool noConfFile, bridge_i64 reserved,
                           const char* logFilePath) {
    return bridgeStatus(__func__, {}, [&] {
        return internal::bridgeApiInitEx(clientId, noConfFile != 0, reserved, logFilePath);
    });
}

bridge_i32 bridgeApiFini(void) {
    return bridgeStatus(__func__, {}, [] { return internal::bridgeApiFini(); });
}

bridge_bool bridgeConfGetBool(const char* key) {
    return bridgeValue<bridge_bool>(
        __func__, {key}, [&] { return static_cast<bridge_bool>(confGetBool(confStore(), key)); });
}

bridge_i32 bridgeConfGetI32(const char* key) {
    return bridgeValue<bridge_i32>(__func__, {key}, [&] { return confGetI32(confStore(), key); });
}

bridge_i64 bridgeConfGetI64(const char* key) {
    return bridgeValue<bridge_i64>(__func__, {key}, [&] { return confGetI64(confStore(), key); });
}

char* bridgeConfGetString(const char* key) {
    return bridgeValue<char*>(__func__, {key},
                              [&] { return bridgeHostCopy(confGetString(confStore(), key)); });
}

char* bridgeConfGetMultiString(const char* key) {
    return bridgeValue<char*>(__func__, {key},
                              [&] { return bridgeHostCopy(confGetMultiString(confStore(), key)); });
}

bridge_i32 bridgeConfSetBool(const char* key, bridge_bool value) {
    return bridgeStatus(__func__, {key}, [&] { return confSetBool(confStore(), key, value != 0); });
}

bridge_i32 bridgeConfSetI32(const char* key, bridge_i32 value) {
    return bridgeStatus(__func__, {key}, [&] { return confSetI32(confStore(), key, value); });
}

bridge_i32 bridgeConfSetI64(const char* key, bridge_i64 value) {
    return bridgeStatus(__func__, {key}, [&] { return confSetI64(confStore(), key, value); });
}

bridge_i32 bridgeConfSetString(const char* key, const char* value) {
    return bridgeStatus(__func__, {key, value},
                        [&] { return confSetString(confStore(), key, value); });
}

bridge_i32 bridgeConfSetMultiString(const char* key, const char* value) {
    return bridgeStatus(__func__, {key, value},
                        [&] { return confSetMultiString(confStore(), key, value); });
}

bridge_i32 bridgeConfCommit(void) {
    return bridgeStatus(__func__, {}, [] { return confCommit(confStore()); });
}

bridge_i32 bridgeConfCommitToFile(const char* path) {
    return bridgeStatus(__func__, {path},
                        [&] { return internal::bridgeConfCommitToFile(confStore(), path); });
}

char* bridgeConfGetInstances(void) {
    return bridgeValue<char*>(__func__, {},
                              [] { return bridgeHostCopy(bridgeInstancesJson(confStore())); });
}

void bridgeFreeMemory(void* memory) { bridgeHostFree(memory); }

bridge_i32 bridgeLaunchApp(const char* instance, const char* package) {
    return bridgeStatus(__func__, {instance, package}, [&] {
        return bridgeStartPlayer(
            {"--instance", instance, "--cmd", "launchApp", "--package", package});
    });
}

bridge_i32 bridgeLaunchAppStore(const char* instance, const char* store, const char* package) {
    return bridgeStatus(__func__, {instance, store, package}, [&] {
        return bridgeStartPlayer({"--instance", instance, "--cmd", "installApp", "--package",
                                  package, "--store", store});
    });
}

bridge_i32 bridgeLaunchUrl(const char* instance, const char* url) {
    return bridgeStatus(__func__, {instance, url}, [&] {
        return bridgeStartPlayer({"--instance", instance, "--cmd", "launchUrl", "--url", url});
    });
}

bridge_i32 bridgeInstallApk(const char* instance, const char* apkFilePath) {
    return bridgeStatus(__func__, {instance, apkFilePath}, [&] {
        return bridgeStartPlayer(
            {"--instance", instance, "--cmd", "installApk", "--filepath", apkFilePath});
    });
}

bridge_i32 bridgeUninstallApp(const char* instance, const char* package) {
    return bridgeStatus(__func__, {instance, package}, [&] {
        return bridgeStartPlayer(
            {"--instance", instance, "--cmd", "uninstallApp", "--package", package});
    });
}

bridge_i32 bridgeInstallImage(const char* imageName) {
    return bridgeStatus(__func__, {imageName}, [&] {
        return bridgeStartManager({"--hidden", "--cmd", "installImage", "--imageName", imageName});
    });
}

bridge_i32 bridgeCreateFreshInstance(const char* imageName, const char* cpu, const char* ram,
                                     const char* graphicEngine, const char* graphicRenderer,
                                     const char* deviceProfile) {
    return bridgeStatus(
        __func__, {imageName, cpu, ram, graphicEngine, graphicRenderer, deviceProfile}, [&] {
            return bridgeStartManager({"--hidden", "--cmd", "createFreshInstance", "--imageName",
                                       imageName, "--cpu", cpu, "--ram", ram, "--graphicEngine",
                                       graphicEngine, "--graphicRenderer", graphicRenderer,
                                       "--deviceProfile", deviceProfile});
        });
}

bridge_i32 bridgePlrShutdown(const char* instance, bridge_bool flag) {
    return bridgeStatus(__func__, {instance},
                        [&] { return internal::bridgePlrShutdown(instance, flag != 0); });
}

void bridgeShutdown(void) {
    bridgeCatchAll(__func__, [] { internal::bridgeShutdown(); });
}

void bridgeRegisterCallbacks(bridgeOnAppInstalled onAppInstalled,
                             bridgeOnAppUninstalled onAppUninstalled,
                             bridgeOnApkInstallCompleted onApkInstallCompleted,
                             bridgeOnInstanceListUpdated onInstanceListUpdated,
                             bridgeInstallImageProgress installImageProgress,
                             bridgeOnCreateInstanceCompleted onCreateInstanceCompleted,
                             bridgeOnInstanceConfigurationChanged onInstanceConfigurationChanged,
                             bridgeOnAppDisplayed onAppDisplayed,
                             bridgeOnAccountListUpdated onAccountListUpdated) {
    bridgeCatchAll(__func__, [&] {
        internal::bridgeRegisterCallbacks(
            {onAppInstalled, onAppUninstalled, onApkInstallCompleted, onInstanceListUpdated,
             installImageProgress, onCreateInstanceCompleted, onInstanceConfigurationChanged,
             onAppDisplayed, onAccountListUpdated});
    });
}

char* bridgeGetInstalledApps(const char* instance) {
    return bridgeValue<char*>(__func__, {instance}, [&]() -> char* {
        const auto apps = internal::bridgeGetInstalledApps(appcStore(), instance);
        return apps ? bridgeHostCopy(*apps) : nullptr;
    });
}

}  // extern "C"
