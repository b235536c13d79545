#ifndef TESTS_HOSTS_EVERYEVENT_H
#define TESTS_HOSTS_EVERYEVENT_H

#include <string>

#include "PlainHost.h"

// Packets with the example of each event, for hosts of every kind. The texts have non-ASCII
// characters.
std::string everyEvent();

// The same as a script for the stand-ins.
std::string everyEventScript();

// The lines that a host prints for them, and for one of them.
Lines everyLine();
std::string lineOf(const std::string& name);

// The server of a host that is initialised as "Helper". connectToHelper() waits for the server.
constexpr const char* kHelperServer = "vtr_Helper_bridge_nvo";
void* connectToHelper();

#endif
