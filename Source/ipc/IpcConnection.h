#ifndef IPC_IPCCONNECTION_H
#define IPC_IPCCONNECTION_H

#include <QByteArray>
#include <cstdint>
#include <string>

#include "ipc/IpcServer.h"

class QLocalServer;
class QLocalSocket;

// The server's side of one connection. Everything here runs on the thread that the socket lives on.
struct IpcConnectionInfo {
    IpcConnectionInfo(QLocalSocket* connection, const std::string* server);
    ~IpcConnectionInfo();
    IpcConnectionInfo(const IpcConnectionInfo&) = delete;
    IpcConnectionInfo& operator=(const IpcConnectionInfo&) = delete;

    // How many of these there are, on any thread: what is left over shows here. For tests.
    static int live();

    // The packet being assembled, header included, and how many bytes are held from there on: when
    // it is whole, the next ones can follow.
    const std::uint8_t* packet() const {
        return reinterpret_cast<const std::uint8_t*>(buffer.constData()) + start;
    }
    int held() const { return buffer.size() - start; }
    bool isWhole() const { return static_cast<std::uint32_t>(held()) >= packetLen; }

    QLocalSocket* socket;
    QByteArray buffer;              // what was read; packets handed over are still in front
    int start = 0;                  // where the packet being assembled begins in it
    std::uint32_t packetLen = 0;    // its length; 0: the next bytes are a header
    const std::string* serverName;  // for log lines
    bool busy = false;              // inside ipcReadCommand
    bool failed = false;            // aborted after an exception; never read again
    bool disconnectedMeanwhile = false;
};

// Takes one waiting connection of the server, if there is one. Its record lives as long as the
// socket, which the server owns until the peer disconnects.
void ipcHandleNewConnection(QLocalServer* server, IpcDecode decode, const std::string* serverName);

// Assembles packets from what the socket holds and hands over each complete one; writes the reply
// of one that wants a reply and came within this call. A length that cannot be one is fatal. Throws
// what memory throws; a packet that was handed over is consumed all the same.
void ipcReadCommand(IpcConnectionInfo* info, IpcDecode decode);

// After a disconnect: takes in what arrived before it, then disposes of the socket.
void ipcDestroyConnection(IpcConnectionInfo* info, IpcDecode decode);

#endif
