#ifndef BRIDGE_BRIDGELOG_H
#define BRIDGE_BRIDGELOG_H

#include "xpl/Xlog.h"

// Every file of the exports logs as one.
constexpr XlogModule kLog{XlogTag::BRIDGE, "Source/bridge/Bridge"};

#endif
