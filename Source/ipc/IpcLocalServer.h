#ifndef IPC_IPCLOCALSERVER_H
#define IPC_IPCLOCALSERVER_H

#include <QLocalServer>
#include <QQueue>
#include <memory>
#include <optional>
#include <string>

// Why a server does not listen: a QAbstractSocket::SocketError and a text.
struct IpcListenError {
    int code = 0;
    std::string text;
};

// A QLocalServer that goes on listening whatever its clients do. Qt's own, on Windows, loses one of
// its eight pipe instances to every client that has left again before the instance was ready, and
// with the eighth it is deaf for good.
//
// To be made, used and deleted on one thread, which runs an event loop. isListening() stays false.
class IpcLocalServer : public QLocalServer {
 public:
    IpcLocalServer();
    ~IpcLocalServer() override;

    // Starts to listen, for any user of this machine, under a name that no other process may serve.
    // newConnection() can be emitted before this returns.
    [[nodiscard]] std::optional<IpcListenError> open(const std::string& serverName);

    bool hasPendingConnections() const override;

    // The sockets are children of the server.
    QLocalSocket* nextPendingConnection() override;

 private:
    class Instances;

    // A connected socket, a child of the server: the last of those that wait to be asked for.
    void queue(std::unique_ptr<QLocalSocket> socket);

    QQueue<QLocalSocket*> pending_;
    std::unique_ptr<Instances> instances_;
};

#endif
