#ifndef IPC_IPCCONNECTION_H
#define IPC_IPCCONNECTION_H

#include <QByteArray>
#include <cstdint>
#include <string>

#include "ipc/IpcServer.h"

class QLocalServer;
class QLocalSocket;

// The server's side of one connection. Use it only on the socket's thread.
struct IpcConnectionInfo {
    IpcConnectionInfo(QLocalSocket* connection, const std::string* server);
    ~IpcConnectionInfo();
    IpcConnectionInfo(const IpcConnectionInfo&) = delete;
    IpcConnectionInfo& operator=(const IpcConnectionInfo&) = delete;

    // Number of live objects, on any thread. Tests look for leaks with it.
    static int live();

    // The packet being assembled, with its header, and the number of bytes held from its start,
    // which may include following packets.
    const std::uint8_t* packet() const {
        return reinterpret_cast<const std::uint8_t*>(buffer.constData()) + start;
    }
    int held() const { return buffer.size() - start; }
    bool isWhole() const { return static_cast<std::uint32_t>(held()) >= packetLen; }

    QLocalSocket* socket;
    QByteArray buffer;              // bytes read; dispatched packets are still at the front
    int start = 0;                  // offset of the packet being assembled
    std::uint32_t packetLen = 0;    // its length; 0: the next bytes are a header
    const std::string* serverName;  // for log lines
    bool busy = false;              // inside ipcReadCommand
    bool failed = false;            // aborted after an exception; never read again
    bool disconnectedMeanwhile = false;
};

// Accepts one pending connection of the server, if there is one. Its record lives as long as the
// socket, which the server owns until the peer disconnects.
void ipcHandleNewConnection(QLocalServer* server, IpcDecode decode, const std::string* serverName);

// Assembles packets from the socket's bytes and dispatches each complete one. Writes a reply if the
// packet requests one and arrived within this call. An impossible length is fatal. Throws
// std::bad_alloc; a dispatched packet is consumed even then.
void ipcReadCommand(IpcConnectionInfo* info, IpcDecode decode);

// After a disconnect: handles what arrived before it, then deletes the socket.
void ipcDestroyConnection(IpcConnectionInfo* info, IpcDecode decode);

#endif
