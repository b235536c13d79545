#ifndef BRIDGE_BRIDGELAUNCH_H
#define BRIDGE_BRIDGELAUNCH_H

#include <string>
#include <vector>

#include "xpl/Xerr.h"

using BridgeArguments = std::vector<std::string>;

// Start a program of the product with these arguments, without waiting for it. Return the status of
// the process creation, which logs its failures.
[[nodiscard]] XErr bridgeStartPlayer(const BridgeArguments& arguments);
[[nodiscard]] XErr bridgeStartManager(const BridgeArguments& arguments);

#endif
