#ifndef BRIDGECTL_DOCTOR_CHECKS_H
#define BRIDGECTL_DOCTOR_CHECKS_H

#include <string>

#include "Configuration.h"
#include "doctor/Finding.h"

// The checks of the doctor. They do not start the library and change nothing. They cover everything
// that would make the library end a host.

// The three registry values and the programs in the install folder.
Findings registryFindings();

// The data folder, its folder Logs, and the log file at this path. Like the next function, does
// nothing if the registry has no usable data folder.
Findings folderFindings(const std::string& logPath);

// The configuration file. Leaves its text in `content`.
Findings confFileFindings(std::string& content);

// The machine-wide locks of the configuration and of the instances' app caches.
Findings lockFindings(const Configuration& configuration);

// The running servers of front ends, manager and players.
Findings serverFindings(const Configuration& configuration);

// Versions of the program's DLLs, DLLs that Windows finds in two folders, unsigned files.
Findings moduleFindings();

#endif
