#include "ipc/IpcQt.h"

#include <QLocalSocket>
#include <QObject>

#include "xpl/XmodulePin.h"

void ipcKeepQtLoaded() {
    static const bool once = [] {
        xmodulePinForever(&QObject::staticMetaObject);
        xmodulePinForever(&QLocalSocket::staticMetaObject);
        return true;
    }();
    static_cast<void>(once);
}
