// The server alone, on the test's thread.
#include "ipc/IpcLocalServer.h"

#include <QEventLoop>
#include <QLocalSocket>

#include "QtThread.h"
#include "support/Platform.h"
#include "support/RawServer.h"

TEST(IpcLocalServerTest, AConnectionIsPendingUntilItIsTaken) {
    const std::string name = "vtr_test_pending_" + std::to_string(ownProcessId());
    onQtThread([name] {
        IpcLocalServer server;
        ASSERT_FALSE(server.open(name).has_value());
        EXPECT_FALSE(server.hasPendingConnections());
        EXPECT_EQ(server.nextPendingConnection(), nullptr);
        QEventLoop loop;
        QObject::connect(&server, &QLocalServer::newConnection, &loop, &QEventLoop::quit);
        void* client = nullptr;
        std::thread connecting([&client, name] { client = connectRaw(name); });
        loop.exec();
        connecting.join();
        EXPECT_TRUE(server.hasPendingConnections());
        QLocalSocket* const socket = server.nextPendingConnection();
        ASSERT_NE(socket, nullptr);
        EXPECT_EQ(socket->parent(), &server);
        EXPECT_FALSE(server.hasPendingConnections());
        EXPECT_EQ(server.nextPendingConnection(), nullptr);
        RawPipe(client).close();
    });
}
