#ifndef TESTS_HOSTS_NINEEVENTS_H
#define TESTS_HOSTS_NINEEVENTS_H

#include <string>

#include "PlainHost.h"

// One scenario for every kind of host: each event once, with texts beyond ASCII.
std::string nineEvents();

// What a host prints for it, a line an event.
Lines nineLines();

// The server's name of a host that says "Helper", and a connection to it as soon as there is one.
constexpr const char* kHelperServer = "vtr_Helper_bridge_nvo";
void* connectToHelper();

Lines with(Lines lines, const Lines& more);

#endif
