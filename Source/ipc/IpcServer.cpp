// The server's thread.
#include "ipc/IpcServer.h"

#include <private/qthread_p.h>
#include <QAbstractEventDispatcher>

#include "ipc/IpcConnection.h"
#include "ipc/IpcLocalServer.h"
#include "ipc/IpcQt.h"
#include "xpl/XcatchAll.h"

IpcServerThread::IpcServerThread(const std::string& name, IpcDecode decodeFunction)
    : serverName(name), decode(decodeFunction) {
    XLOG_D(kIpcServerLog, "IpcServerThread %s called for server: %s", "IpcServerThread",
           serverName.c_str());
    setObjectName(QStringLiteral("IpcServerThread"));
}

IpcServerThread::~IpcServerThread() {
    XLOG_D(kIpcServerLog, "IpcServerThread %s called for server: %s", "~IpcServerThread",
           serverName.c_str());
}

void IpcServerThread::run() {
    begun = true;
    XLOG_D(kIpcServerLog, "IpcServerThread %s called for server: %s", "run", serverName.c_str());
    // Otherwise Qt delivers no events on this thread until the host creates an application object,
    // which most hosts never do.
    QThreadData::get2(this)->requiresCoreApplication = false;
    xcatchAll(kIpcServerLog, "run", [this] { serve(); });
    // Here, on the sockets' thread: after it ends, nothing would deliver their deferred deletion.
    server.reset();
}

void IpcServerThread::serve() {
    // Creates the event loop's window before the server is visible: under Wine a host that exits
    // while a thread creates a window hangs, because the dead thread keeps the window lock.
    eventDispatcher()->processEvents(QEventLoop::AllEvents);
    server = std::make_unique<IpcLocalServer>();
    connect(
        server.get(), &QLocalServer::newConnection, server.get(),
        [this] {
            xcatchAll(kIpcServerLog, "ipcHandleNewConnection",
                      [this] { ipcHandleNewConnection(server.get(), decode, &serverName); });
        },
        Qt::DirectConnection);
    if (const auto error = server->open(serverName)) {
        XLOG_E(kIpcServerLog, "IpcServer Failed to listen on %s, error: %d(%s)", serverName.c_str(),
               error->code, error->text.c_str());
        return;
    }
    exec();
}

int ipcServerInit(IpcServerThread** out, const std::string& name, IpcDecode decode) {
    XLOG_D(kIpcServerLog, "%s: called with name = %s", "ipcServerInit", name.c_str());
    ipcKeepQtLoaded();
    *out = new IpcServerThread(name, decode);
    (*out)->start();
    if ((*out)->isFinished() && !(*out)->hasBegun()) {
        XLOG_E(kIpcServerLog, "%s: no thread for server %s", "ipcServerInit", name.c_str());
    }
    return 0;
}

int ipcServerFini(IpcServerThread** thread) {
    XLOG_D(kIpcServerLog, "%s called", "ipcServerFini");
    if (*thread == nullptr) return 0;
    (*thread)->quit();
    (*thread)->wait();
    delete *thread;
    return 0;
}

bool ipcServerIsCurrentThread(const IpcServerThread* thread) {
    return QThread::currentThread() == thread;
}
