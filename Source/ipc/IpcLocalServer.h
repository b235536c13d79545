#ifndef IPC_IPCLOCALSERVER_H
#define IPC_IPCLOCALSERVER_H

#include <QLocalServer>
#include <QQueue>
#include <memory>
#include <optional>
#include <string>

// Why a server cannot listen: a QAbstractSocket::SocketError and its text.
struct IpcListenError {
    int code = 0;
    std::string text;
};

// A QLocalServer that keeps listening whatever its clients do. On Windows, Qt's own loses one of
// its eight pipe instances to each client that disconnects before the instance is ready; after
// eight such clients it accepts no more.
//
// Create, use and delete it on one thread, which runs an event loop. isListening() stays false.
class IpcLocalServer : public QLocalServer {
 public:
    IpcLocalServer();
    ~IpcLocalServer() override;

    // Starts to listen, for any user of this machine. Fails when another process serves the name.
    // newConnection() may be emitted before this returns.
    [[nodiscard]] std::optional<IpcListenError> open(const std::string& serverName);

    bool hasPendingConnections() const override;

    // The sockets are children of the server.
    QLocalSocket* nextPendingConnection() override;

 private:
    class Instances;

    // Queues a connected socket, which becomes a child of the server, as pending connection.
    void queue(std::unique_ptr<QLocalSocket> socket);

    QQueue<QLocalSocket*> pending_;
    std::unique_ptr<Instances> instances_;
};

#endif
