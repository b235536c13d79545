// Starts the product's programs from its install folder.
#include "bridge/BridgeLaunch.h"

#include "utl/UtlFolders.h"
#include "xpl/Xproc.h"

namespace {

XErr start(const char* program, const BridgeArguments& arguments) {
    XprocArguments all{utlGetInstallDir() + program};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return xprocCreate(/*handle=*/nullptr, all);
}

}  // namespace

XErr bridgeStartPlayer(const BridgeArguments& arguments) {
    return start("QX-Player.exe", arguments);
}

XErr bridgeStartManager(const BridgeArguments& arguments) {
    return start("QX-MultiInstanceManager.exe", arguments);
}
