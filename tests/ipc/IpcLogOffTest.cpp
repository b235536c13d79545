// What is refused, with every level off: the same results, and not a line.
#include <gtest/gtest.h>

#include <QLocalSocket>
#include <atomic>
#include <string>

#include "ServerFixture.h"
#include "ipc/IpcClient.h"
#include "ipc/IpcConnection.h"
#include "ipc/IpcName.h"
#include "support/EventPackets.h"
#include "support/FakeSocket.h"
#include "support/LogCapture.h"
#include "support/Platform.h"
#include "support/RawServer.h"
#include "support/Subprocess.h"

namespace {

class IpcLogOffTest : public ::testing::Test {
 protected:
    IpcLogOffTest() {
        ipcClientInit(client, name);
        client.waitMs = 300;
    }
    ~IpcLogOffTest() override {
        EXPECT_GT(off.refused(), 0);
        EXPECT_EQ(off.printed(), 0);
    }

    LogOff off;
    const std::string name = "vtr_test_off_" + std::to_string(ownProcessId());
    IpcClient client;
};

}  // namespace

TEST_F(IpcLogOffTest, CallsThatAreRefusedAtOnce) {
    char reply[8];
    EXPECT_EQ(ipcSendToServer(client, "x", 0, true), -1);
    EXPECT_EQ(ipcSendToServer(client, "x", 1, true), -1) << "there is no server";
    EXPECT_EQ(ipcReadFromServer(client, reply, 0), -1);
    EXPECT_EQ(ipcReadFromServer(client, reply, 8), -1);
}

TEST_F(IpcLogOffTest, AnotherServerThanBefore) {
    RawServer first(name, [](RawPipe& pipe) { pipe.readAll(); });
    RawServer second(name + "b", [](RawPipe& pipe) {
        pipe.read(6);
        pipe.write("abc");
    });
    ASSERT_EQ(ipcSendToServer(client, "packet", 6, false), 0);
    client.serverName = name + "b";
    char reply[8];
    EXPECT_EQ(ipcReadFromServer(client, reply, 8), -1);
    EXPECT_EQ(ipcSendToServer(client, "packet", 6, false), 0);
    EXPECT_EQ(ipcReadFromServer(client, reply, 8), -1) << "too short";
    EXPECT_EQ(std::string(reply, 8), std::string("abc\0\0\0\0\0", 8));
    client.socket.reset();
}

TEST_F(IpcLogOffTest, APeerThatNeverReads) {
    std::atomic<bool> done{false};
    RawServer server(
        name,
        [&done](RawPipe&) {
            while (!done) sleepMs(5);
        },
        /*bufferSize=*/0);
    const std::string large(1 << 20, 'x');
    EXPECT_EQ(ipcSendToServer(client, large.data(), static_cast<int>(large.size()), true), -1);
    done = true;
}

TEST_F(IpcLogOffTest, AReplyThatNobodyHasMemoryFor) {
    const std::string server = "server";
    FakeSocket socket;
    IpcConnectionInfo info(&socket, &server);
    socket.waiting = packetOf(1, "", 0x80000000u) + packetOf(2, "", 3);
    ipcReadCommand(&info, see);
    EXPECT_EQ(socket.written, std::string(3, '\0'));
}

TEST_F(IpcLogOffTest, ANameThatIsServedAlready) {
    IpcServerThread* first = nullptr;
    ASSERT_EQ(ipcServerInit(&first, name, see), 0);
    while (!ipcNameIsServed(name)) sleepMs(1);
    IpcServerThread* second = nullptr;
    ASSERT_EQ(ipcServerInit(&second, name, see), 0);
    EXPECT_TRUE(second->wait(10'000)) << "its thread ends by itself";
    ipcServerFini(&second);
    ipcServerFini(&first);
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
    const ChildResult result = runSubprocess("deliversALengthInSilence");
    EXPECT_EQ(result.status, kFatalStatus);
    EXPECT_EQ(result.out, "");
}
