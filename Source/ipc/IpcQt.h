#ifndef IPC_IPCQT_H
#define IPC_IPCQT_H

// To be called before the first QObject is made. Qt starts a thread of its own to watch those host
// threads that use it, and that thread ends when they do: should the host unload this library
// before, Qt must stay, or the watcher's code would be gone. So Qt stays until the process ends.
void ipcKeepQtLoaded();

#endif
