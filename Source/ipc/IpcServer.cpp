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
    // Without this Qt delivers nothing at all here until the host has an application object, and
    // most hosts never have one.
    QThreadData::get2(this)->requiresCoreApplication = false;
    xcatchAll(kIpcServerLog, "run", [this] { serve(); });
    // Here, where the sockets live: after the thread's end nothing would deliver their deletion.
    server.reset();
}

void IpcServerThread::serve() {
    // The event loop's window is made now, before anybody can know of the server: under Wine a host
    // that ends while a thread makes its window hangs, since the window lock stays with the thread.
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
