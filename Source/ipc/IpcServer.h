#ifndef IPC_IPCSERVER_H
#define IPC_IPCSERVER_H

#include <QThread>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "xpl/Xlog.h"
#include "xpl/XmodulePin.h"

class IpcLocalServer;
class QLocalSocket;

// The server's files log as one.
constexpr XlogModule kIpcServerLog{XlogTag::IPC, "Source/ipc/IpcServer"};

// Takes a complete packet, header included, on the server's thread. `reply` has `replyLength`
// zeroed bytes, which go back to the sender when the function returns; null and 0 without a reply.
// The result is ignored, and an exception is logged.
using IpcDecode = bool (*)(QLocalSocket* socket, const std::uint8_t* packet, std::int32_t length,
                           void* reply, std::int32_t replyLength);

// A local-socket server on a thread of its own, which any user of the machine may connect to. It
// needs no QCoreApplication and never makes one.
class IpcServerThread : public QThread {
 public:
    IpcServerThread(const std::string& name, IpcDecode decodeFunction);
    ~IpcServerThread() override;

    // Whether the system had a thread for it.
    bool hasBegun() const { return begun; }

 protected:
    void run() override;

 private:
    void serve();

    // The thread runs this module's code, and so do the destructors of the other members: the pin
    // is declared first to be destroyed last.
    XmodulePin pin;
    const std::string serverName;
    const IpcDecode decode;
    std::atomic<bool> begun{false};
    std::unique_ptr<IpcLocalServer> server;  // made, used and deleted by run()
};

// Starts a server under its full name. Always 0: whether it can listen shows later, in the log. A
// name that is in use is a failure, and nothing is tried again.
int ipcServerInit(IpcServerThread** out, const std::string& name, IpcDecode decode);

// Stops the server, waits for its thread, however long a decode function takes, and deletes it; the
// pointer keeps its value. Does nothing for a null pointer. Always 0. Not on the server's thread.
int ipcServerFini(IpcServerThread** thread);

// Whether the caller is on that server's thread.
bool ipcServerIsCurrentThread(const IpcServerThread* thread);

#endif
