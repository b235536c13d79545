#ifndef IPC_IPCSERVERLOG_H
#define IPC_IPCSERVERLOG_H

#include "xpl/Xlog.h"

// The server's files log as one.
constexpr XlogModule kLog{XlogTag::IPC, "Source/ipc/IpcServer"};

#endif
