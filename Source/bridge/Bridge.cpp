// The exported functions: each takes its arguments, makes one call inside the fence and hands the
// result over. What they do is elsewhere.
#include <bridge/bridge.h>

#include "bridge/BridgeFence.h"
#include "bridge/BridgeInit.h"
#include "bridge/BridgeInstances.h"
#include "bridge/BridgeLog.h"
#include "bridge/BridgeMemory.h"
#include "conf/Conf.h"

namespace {

// For functions that this build does not have yet.
XErr notImplemented(const char* function) {
    XLOG_E(kLog, "%s: not implemented in this build", function);
    return XERR_NOSYS;
}

}  // namespace

extern "C" {

bridge_i32 bridgeApiInit(const char* clientId) { return bridgeApiInitEx(clientId, 0, 0, nullptr); }

bridge_i32 bridgeApiInitEx(const char* clientId, bridge_bool noConfFile, bridge_i64 reserved,
                           const char* logFilePath) {
    return bridgeStatus(__func__, {}, [&] {
        return bridge::bridgeApiInitEx(clientId, noConfFile != 0, reserved, logFilePath);
    });
}

bridge_i32 bridgeApiFini(void) { return XERR_SUCCESS; }

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
    return bridgeStatus(__func__, {path}, [&] {
        XLOG_I(kLog, "bridgeConfCommitToFile args: %s", path);
        return confCommitToFile(confStore(), path);
    });
}

char* bridgeConfGetInstances(void) {
    return bridgeValue<char*>(__func__, {},
                              [] { return bridgeHostCopy(bridgeInstancesJson(confStore())); });
}

void bridgeFreeMemory(void* memory) { bridgeHostFree(memory); }

bridge_i32 bridgeLaunchApp(const char*, const char*) { return notImplemented(__func__); }

bridge_i32 bridgeLaunchAppStore(const char*, const char*, const char*) {
    return notImplemented(__func__);
}

bridge_i32 bridgeLaunchUrl(const char*, const char*) { return notImplemented(__func__); }

bridge_i32 bridgeInstallApk(const char*, const char*) { return notImplemented(__func__); }

bridge_i32 bridgeUninstallApp(const char*, const char*) { return notImplemented(__func__); }

bridge_i32 bridgeInstallImage(const char*) { return notImplemented(__func__); }

bridge_i32 bridgeCreateFreshInstance(const char*, const char*, const char*, const char*,
                                     const char*, const char*) {
    return notImplemented(__func__);
}

bridge_i32 bridgePlrShutdown(const char*, bridge_bool) { return notImplemented(__func__); }

void bridgeShutdown(void) { notImplemented(__func__); }

void bridgeRegisterCallbacks(bridgeOnAppInstalled, bridgeOnAppUninstalled,
                             bridgeOnApkInstallCompleted, bridgeOnInstanceListUpdated,
                             bridgeInstallImageProgress, bridgeOnCreateInstanceCompleted,
                             bridgeOnInstanceConfigurationChanged, bridgeOnAppDisplayed,
                             bridgeOnAccountListUpdated) {
    notImplemented(__func__);
}

char* bridgeGetInstalledApps(const char*) {
    notImplemented(__func__);
    return nullptr;
}

}  // extern "C"
