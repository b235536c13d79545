#ifndef TESTS_HOSTS_EVERYEVENT_H
#define TESTS_HOSTS_EVERYEVENT_H

#include <string>

#include "PlainHost.h"

// One scenario for every kind of host: the example of each event, with texts beyond ASCII.
std::string everyEvent();

// The same as a script for the stand-ins.
std::string everyEventScript();

// What a host prints for it, a line an event, and its line for one of them.
Lines everyLine();
std::string lineOf(const std::string& name);

// The server's name of a host that says "Helper", and a connection to it as soon as there is one.
constexpr const char* kHelperServer = "vtr_Helper_bridge_nvo";
void* connectToHelper();

#endif
