#ifndef IPC_IPCNAME_H
#define IPC_IPCNAME_H

#include <string>

// Whether somebody serves a local socket of this name. A name in use is no obstacle for the system:
// a second server would take some of the first one's clients.
bool ipcNameIsServed(const std::string& serverName);

#endif
