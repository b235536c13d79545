#include "bridge/BridgeFence.h"

#include "xpl/Xlog.h"

void bridgeLogNullArgument(const char* function) noexcept {
    XLOG_E(kLog, "%s: null argument", function);
}
