#ifndef IPC_IPCCLIENT_H
#define IPC_IPCCLIENT_H

#include <memory>
#include <string>

class QLocalSocket;

// Every wait of a client is at most this long.
constexpr int IPC_WAIT_MS = 30'000;

// Deletes a socket when the thread's event loop comes to it, or at once where nothing ever would:
// in a host without Qt, on a thread that Qt does not run, or without memory for the event. Throws
// nothing.
struct IpcSocketDeleter {
    void operator()(QLocalSocket* socket) const;
};

// A connection for one request and its reply, on the thread that made it, which needs no event
// loop: every wait blocks. Make one, init, send, perhaps read, and let it go.
struct IpcClient {
    IpcClient() = default;
    ~IpcClient();
    IpcClient(const IpcClient&) = delete;
    IpcClient& operator=(const IpcClient&) = delete;

    std::string serverName;
    std::unique_ptr<QLocalSocket, IpcSocketDeleter> socket;
    int waitMs = IPC_WAIT_MS;  // for tests
};

// All of these return 0 or -1, not a status of the XERR family; failures are logged.

// Prepares a client for a server, by its full name; nothing is opened yet. Always 0.
int ipcClientInit(IpcClient& client, const std::string& serverName);

// Connects if need be and writes the whole packet. -1 for a size below 1, a server that is not
// there, a wait that ends, and data that did not reach the server.
[[nodiscard]] int ipcSendToServer(IpcClient& client, const void* data, int size,
                                  bool disconnectAfter);

// Reads a reply of exactly this size and disconnects. When the reply does not come whole, the rest
// is filled with zeros, the result is -1 and the connection stays.
[[nodiscard]] int ipcReadFromServer(IpcClient& client, void* out, int outSize);

// Disconnects and waits for it.
int ipcDisconnectFromServer(QLocalSocket* socket, int waitMs = IPC_WAIT_MS);

#endif
