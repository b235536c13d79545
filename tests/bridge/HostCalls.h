#ifndef TESTS_BRIDGE_HOSTCALLS_H
#define TESTS_BRIDGE_HOSTCALLS_H

#include <string>
#include <vector>

#include "bridge/BridgeIpcClbk.h"

// The calls that the writing host received, a line each: "onAppDisplayed(Nougat64|com.example)".
extern std::vector<std::string> hostCalls;

// A host whose functions record their calls.
BridgeCallbacks writingHost();

#endif
