// Initialisation and client identity.
#include "bridge/BridgeInit.h"

#include <bridge/bridge.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <string>
#include <string_view>

#include "bridge/BridgeEntry.h"
#include "conf/Conf.h"
#include "utl/UtlFolders.h"
#include "utl/UtlImages.h"
#include "utl/UtlRegistry.h"
#include "xpl/Xpl.h"

namespace internal {

namespace {

// The versions of the build and of the interface must equal the version that is compared with the
// product's.
static_assert(std::string_view(BRIDGE_VERSION_TEXT) == UTL_VERSION);
static_assert(std::string_view(BRIDGE_BUILD_VERSION) == UTL_VERSION);

constexpr std::string_view kVersionCheckedClient = "Launcher";
constexpr std::string_view kClients[] = {"Launcher", "Installer", "LogCollector", "Helper",
                                         "Uninstaller"};

std::atomic<const char*> currentClientId{nullptr};

bool isKnownClient(std::string_view client) {
    return std::find(std::begin(kClients), std::end(kClients), client) != std::end(kClients);
}

std::string confPath(bool noConfFile) {
    return noConfFile ? std::string() : utlGetDataDir() + "vantrel.conf";
}

}  // namespace

const char* clientId() noexcept { return currentClientId; }

XErr bridgeApiInitEx(const char* clientIdText, bool noConfFile, std::int64_t /*reserved*/,
                     const char* logFilePath) {
    const char* const self = "bridgeApiInitEx";
    const std::string client = clientIdText == nullptr ? "(null)" : clientIdText;
    if (!isKnownClient(client)) {
        XLOG_E(kLog, "%s: Invalid clientId : %s", self, client.c_str());
        return XERR_INVAL;
    }
    if (client == kVersionCheckedClient) {
        const std::string product =
            utlRegistryString(UtlRegistryRoot::LocalMachine, UTL_PRODUCT_KEY, "Version", {});
        if (product != UTL_VERSION) {
            XLOG_E(kLog, "%s: Version mismatch, Product Version : %s, Bridge Version : %s", self,
                   product.c_str(), UTL_VERSION);
            return XERR_FAILURE;
        }
    }
    const std::string defaultLog = utlPlayerLogPath();
    currentClientId = clientIdText;
    const std::string log = logFilePath == nullptr ? defaultLog : logFilePath;
    if (const XErr err = xplLibInit(nullptr, log); err != XERR_SUCCESS) return err;
    xlogSetClientName(client + "_bridge");
    XLOG_I(kLog, "%s:#################### In bridgeApiInit %s ###############", self,
           client.c_str());
    XLOG_I(kLog, "Loading configuration ...");
    // An exception counts as a failed load.
    const XErr err = bridgeCatchAll(self, XERR_FAILURE, [noConfFile] {
        return confLibInit(confStore(), confPath(noConfFile), /*allowDeprecated=*/false);
    });
    if (err != XERR_SUCCESS) {
        XLOG_E(kLog, "Error in confLibInit init");
        return err;
    }
    XLOG_I(kLog, "Configuration loaded successfully...");
    return XERR_SUCCESS;
}

}  // namespace internal
