#ifndef IPC_IPCQT_H
#define IPC_IPCQT_H

// Pins Qt Core and Qt Network until the process ends. Call it before creating the first QObject. Qt
// runs a thread that watches the host threads that use it, and a socket may wait on a host's thread
// for its deferred deletion; both may outlive this library when the host unloads it.
void ipcKeepQtLoaded();

#endif
