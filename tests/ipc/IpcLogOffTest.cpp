// Refused calls with every log level off: the same results, and no line.
#include <QLocalSocket>

#include "DeafServer.h"
#include "ServerFixture.h"
#include "ipc/IpcClient.h"
#include "ipc/IpcConnection.h"
#include "ipc/IpcName.h"
#include "support/EventPackets.h"
#include "support/FakeSocket.h"
#include "support/SilentCalls.h"

namespace {

class IpcLogOffTest : public ::testing::Test {
 protected:
    IpcLogOffTest() {
        ipcClientInit(client, name);
        client.waitMs = 300;
    }

    int sendToOneThatNeverReads() {
        const DeafServer server(name, /*bytes=*/0, /*bufferSize=*/0);
        const std::string large(1 << 20, 'x');
        return ipcSendToServer(client, large.data(), static_cast<int>(large.size()), true);
    }

    int serveTwice() const {
        IpcServerThread* first = nullptr;
        EXPECT_EQ(ipcServerInit(&first, name, see), 0);
        while (!ipcNameIsServed(name)) sleepMs(1);
        IpcServerThread* second = nullptr;
        EXPECT_EQ(ipcServerInit(&second, name, see), 0);
        const bool endsByItself = second->wait(10'000);
        ipcServerFini(&second);
        ipcServerFini(&first);
        return endsByItself;
    }

    const std::string name = "vtr_test_off_" + std::to_string(ownProcessId());
    IpcClient client;
    char reply[8] = {};
};

std::string replyWithoutMemory() {
    const std::string server = "server";
    FakeSocket socket;
    IpcConnectionInfo info(&socket, &server);
    socket.waiting = packetOf(1, "", 0x80000000u) + packetOf(2, "", 3);
    ipcReadCommand(&info, see);
    return socket.written;
}

}  // namespace

TEST_F(IpcLogOffTest, WhatIsRefusedIsRefusedInSilence) {
    expectSilence({
        {"send nothing", -1, kSomeLines, [&] { return ipcSendToServer(client, "x", 0, true); }},
        {"send to nobody", -1, kSomeLines, [&] { return ipcSendToServer(client, "x", 1, true); }},
        {"read nothing", -1, kSomeLines, [&] { return ipcReadFromServer(client, reply, 0); }},
        {"read from nobody", -1, kSomeLines, [&] { return ipcReadFromServer(client, reply, 8); }},
        {"send to a server that never reads", -1, kSomeLines,
         [&] { return sendToOneThatNeverReads(); }},
        {"a reply without memory", true, kSomeLines,
         [] { return replyWithoutMemory() == std::string(3, '\0'); }},
        {"serve a name that is served", true, kSomeLines, [&] { return serveTwice(); }},
    });
}

TEST_F(IpcLogOffTest, AnotherServerThanBefore) {
    RawServer first(name, [](RawPipe& pipe) { pipe.readAll(); });
    RawServer second(name + "b", [](RawPipe& pipe) {
        pipe.read(6);
        pipe.write("abc");
    });
    const auto send = [&] { return ipcSendToServer(client, "packet", 6, false); };
    const auto read = [&] { return ipcReadFromServer(client, reply, 8); };
    expectSilence({{"send", 0, kSomeLines, send}});
    client.serverName = name + "b";
    expectSilence({
        {"read from another than was sent to", -1, kSomeLines, read},
        {"send to the other", 0, kSomeLines, send},
        {"read a reply that is too short", -1, kSomeLines, read},
    });
    EXPECT_EQ(std::string(reply, 8), std::string("abc\0\0\0\0\0", 8));
    client.socket.reset();
}

SUBPROCESS(deliversALengthInSilence) {
    const std::string server = "server";
    FakeSocket socket;
    IpcConnectionInfo info(&socket, &server);
    socket.waiting = bytesOf(1u) + bytesOf(0u) + bytesOf(0u);
    const LogOff silence;
    ipcReadCommand(&info, see);
    return 0;
}

TEST_F(IpcLogOffTest, ALengthThatCannotBeOneIsStillFatal) {
    expectSilentBreak("deliversALengthInSilence");
}
