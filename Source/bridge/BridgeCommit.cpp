// The commit into a file of the host's choice.
#include "bridge/BridgeCommit.h"

#include "bridge/BridgeLog.h"
#include "xpl/Xerr.h"

XErr bridge::bridgeConfCommitToFile(ConfStore& store, const std::string& path) {
    XLOG_I(kLog, "bridgeConfCommitToFile args: %s", path.c_str());
    return confCommitToFile(store, path);
}
