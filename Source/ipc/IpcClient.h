#ifndef IPC_IPCCLIENT_H
#define IPC_IPCCLIENT_H

#include <memory>
#include <string>

class QLocalSocket;

// Time limit of each wait of a client.
constexpr int IPC_WAIT_MS = 30'000;

// Deletes a socket through the thread's event loop, or at once where there is none (a host without
// Qt, a thread that Qt does not run) or no memory for the event. Does not throw.
struct IpcSocketDeleter {
    void operator()(QLocalSocket* socket) const;
};

// A connection for one request and its reply. Use it on one thread, which needs no event loop:
// every wait blocks. Construct, init, send, optionally read, destroy.
struct IpcClient {
    IpcClient() = default;
    ~IpcClient();
    IpcClient(const IpcClient&) = delete;
    IpcClient& operator=(const IpcClient&) = delete;

    std::string serverName;
    std::unique_ptr<QLocalSocket, IpcSocketDeleter> socket;
    int waitMs = IPC_WAIT_MS;  // for tests
};

// These return 0 or -1, not an XERR status. Failures are logged.

// Prepares a client for a server, by its full name. Opens nothing yet. Always returns 0.
int ipcClientInit(IpcClient& client, const std::string& serverName);

// Connects if necessary and writes the whole packet. Returns -1 for a size below 1, a missing
// server, a time-out, or data that did not reach the server.
[[nodiscard]] int ipcSendToServer(IpcClient& client, const void* data, int size,
                                  bool disconnectAfter);

// Reads a reply of exactly this size and disconnects. When the reply is incomplete, fills the rest
// with zeros, stays connected and returns -1.
[[nodiscard]] int ipcReadFromServer(IpcClient& client, void* out, int outSize);

// Disconnects, and waits until that is done.
int ipcDisconnectFromServer(QLocalSocket* socket, int waitMs = IPC_WAIT_MS);

#endif
