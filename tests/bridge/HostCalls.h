#ifndef TESTS_BRIDGE_HOSTCALLS_H
#define TESTS_BRIDGE_HOSTCALLS_H

#include <string>
#include <vector>

#include "bridge/BridgeIpcClbk.h"

// A host that writes down its calls: one line each, as "onAppDisplayed(Nougat64|com.example)".
extern std::vector<std::string> hostCalls;

// All functions of that host.
BridgeCallbacks writingHost();

#endif
