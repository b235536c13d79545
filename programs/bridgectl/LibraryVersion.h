#ifndef BRIDGECTL_LIBRARYVERSION_H
#define BRIDGECTL_LIBRARYVERSION_H

#include <string>

// The version of the loaded QX-Bridge.dll, from its version resource: "5.2.0.1052". Empty without
// one.
std::string libraryVersion();

// The versions of the program and the library, in two lines.
std::string programVersions();

#endif
