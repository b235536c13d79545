// Qt's own server does here. Without access options it binds the name itself, which is how
// ipcNameIsServed finds it.
#include "ipc/IpcLocalServer.h"
#include "ipc/IpcName.h"

class IpcLocalServer::Instances {};

IpcLocalServer::IpcLocalServer() = default;

IpcLocalServer::~IpcLocalServer() = default;

std::optional<IpcListenError> IpcLocalServer::open(const std::string& serverName) {
    const QString name = QString::fromStdString(serverName);
    if (!serverName.empty()) {
        if (ipcNameIsServed(serverName)) {
            return IpcListenError{QAbstractSocket::AddressInUseError,
                                  "QLocalServer::listen: Address in use"};
        }
        removeServer(name);  // what a server that was killed left behind
    }
    if (listen(name)) return std::nullopt;
    return IpcListenError{serverError(), errorString().toStdString()};
}

bool IpcLocalServer::hasPendingConnections() const { return QLocalServer::hasPendingConnections(); }

QLocalSocket* IpcLocalServer::nextPendingConnection() {
    return QLocalServer::nextPendingConnection();
}
