#ifndef IPC_IPCQT_H
#define IPC_IPCQT_H

// To be called before the first QObject is made. Qt starts a thread of its own to watch those host
// threads that use it, and that thread ends when they do: should the host unload this library
// before, Qt must stay, or the watcher's code would be gone. A socket can wait for its deletion on
// a host's thread until after the unload, too. So both of Qt's modules stay until the process ends.
void ipcKeepQtLoaded();

#endif
