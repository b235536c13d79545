#ifndef BRIDGECTL_DOCTOR_CHECKS_H
#define BRIDGECTL_DOCTOR_CHECKS_H

#include <string>

#include "Configuration.h"
#include "doctor/Finding.h"

// What the doctor looks at. None of it starts the library or changes anything; what would end a
// host inside the library is only read.

// The three values of the registry, and what the install folder has.
Findings registryFindings();

// The data folder, its folder Logs and the log file at this path. Nothing, like the next function,
// when the registry names no data folder.
Findings folderFindings(const std::string& logPath);

// The configuration file; its text is left in `content`.
Findings confFileFindings(std::string& content);

// The machine-wide locks of the configuration and of the instances' app caches.
Findings lockFindings(const Configuration& configuration);

// The names of the front ends' servers, the manager's and the players' that are served.
Findings serverFindings(const Configuration& configuration);

// The versions of the program's DLLs, DLLs that Windows finds in two folders, unsigned files.
Findings moduleFindings();

#endif
