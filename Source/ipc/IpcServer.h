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

// All files of the server log under one name.
constexpr XlogModule kIpcServerLog{XlogTag::IPC, "Source/ipc/IpcServer"};

// Handles a complete packet, with its header, on the server's thread. `reply` has `replyLength`
// zeroed bytes, which are sent back when the function returns; null and 0 without a reply.
// The result is ignored; exceptions are logged.
using IpcDecode = bool (*)(QLocalSocket* socket, const std::uint8_t* packet, std::int32_t length,
                           void* reply, std::int32_t replyLength);

// A local-socket server on its own thread. Any user of the machine may connect. Needs no
// QCoreApplication and never creates one.
class IpcServerThread : public QThread {
 public:
    IpcServerThread(const std::string& name, IpcDecode decodeFunction);
    ~IpcServerThread() override;

    // Whether the thread has started.
    bool hasBegun() const { return begun; }

 protected:
    void run() override;

 private:
    void serve();

    // Declared first, so destroyed last: the thread and the other members' destructors run this
    // module's code.
    XmodulePin pin;
    const std::string serverName;
    const IpcDecode decode;
    std::atomic<bool> begun{false};
    std::unique_ptr<IpcLocalServer> server;  // created, used and deleted by run()
};

// Starts a server under its full name. Always returns 0: whether it listens appears only in the
// log. A name that is in use is a failure. There is no retry.
int ipcServerInit(IpcServerThread** out, const std::string& name, IpcDecode decode);

// Stops the server, waits for its thread (as long as a decode function takes) and deletes it. Does
// not clear the pointer. Does nothing for a null pointer. Always returns 0. Must not be called on
// the server's thread.
int ipcServerFini(IpcServerThread** thread);

// Whether the caller is on that server's thread.
bool ipcServerIsCurrentThread(const IpcServerThread* thread);

#endif
