#ifndef BRIDGECTL_LIBRARYVERSION_H
#define BRIDGECTL_LIBRARYVERSION_H

#include <string>

// Version of the QX-Bridge.dll that this process has loaded, from its version resource:
// "5.2.0.1052". Empty when it has none.
std::string libraryVersion();

// The program's own version and the library's, in two lines.
std::string programVersions();

#endif
