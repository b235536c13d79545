#ifndef BRIDGECTL_EVENTSERVER_H
#define BRIDGECTL_EVENTSERVER_H

#include <string>

// Who serves a local socket of this name.
enum class ServerOwner {
    Nobody,
    ThisProcess,
    AnotherProcess,
};

// Whether anybody does, without a connection to them.
bool isServed(const std::string& serverName);

// Connects for a moment to find out.
ServerOwner findOwner(const std::string& serverName);

#endif
