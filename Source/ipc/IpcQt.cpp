#include "ipc/IpcQt.h"

#include <QObject>

#include "xpl/XmodulePin.h"

void ipcKeepQtLoaded() {
    static const bool once = [] {
        xmodulePinForever(&QObject::staticMetaObject);
        return true;
    }();
    static_cast<void>(once);
}
