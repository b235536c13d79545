// Uses Qt's own server. Without access options it binds the name directly, where ipcNameIsServed
// finds it.
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
        removeServer(name);  // a socket file left behind by a killed server
    }
    if (listen(name)) return std::nullopt;
    return IpcListenError{serverError(), errorString().toStdString()};
}

bool IpcLocalServer::hasPendingConnections() const { return QLocalServer::hasPendingConnections(); }

QLocalSocket* IpcLocalServer::nextPendingConnection() {
    return QLocalServer::nextPendingConnection();
}
