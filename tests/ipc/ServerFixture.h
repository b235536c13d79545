#ifndef TESTS_IPC_SERVERFIXTURE_H
#define TESTS_IPC_SERVERFIXTURE_H

#include "ipc/IpcServer.h"
#include "support/Lines.h"
#include "support/TestHeaders.h"

// The packets that the tests' decoder saw. Global, because a decoder is a plain function.
struct Seen {
    std::mutex lock;
    std::condition_variable changed;
    Lines packets;
    std::uint32_t thread = 0;
    std::size_t count = 0;

    void clear();
    bool waitFor(std::size_t wanted, std::chrono::seconds limit = std::chrono::seconds(60));
};
extern Seen seen;

bool see(QLocalSocket* socket, const std::uint8_t* packet, std::int32_t length, void* reply,
         std::int32_t replyLength);

// A server with a unique name.
class ServerFixture : public ::testing::Test {
 protected:
    ServerFixture();
    ~ServerFixture() override;

    void start(IpcDecode decode = see);
    void stop();  // expects that no record of a connection remains

    // Waits until the process has this many records of connections.
    static bool waitForRecords(int wanted);

    // Connects as soon as an instance of the pipe is free; the handle is the caller's.
    void* connect() const;

    std::string name;
    IpcServerThread* thread = nullptr;
};

#endif
