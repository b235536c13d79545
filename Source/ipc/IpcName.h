#ifndef IPC_IPCNAME_H
#define IPC_IPCNAME_H

#include <string>

// Whether a process serves this local socket. The system does not refuse a name in use: a second
// server would take some of the first one's clients.
bool ipcNameIsServed(const std::string& serverName);

#endif
