#include "bridge/BridgeFence.h"

#include "bridge/BridgeLog.h"

void bridgeLogException(const char* function, const char* what) noexcept {
    XLOG_E(kLog, "%s: exception: %s", function, what);
}

void bridgeLogNullArgument(const char* function) noexcept {
    XLOG_E(kLog, "%s: null argument", function);
}
