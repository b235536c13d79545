// The server itself, on a thread that the test runs.
#include "ipc/IpcLocalServer.h"

#include <gtest/gtest.h>

#include <private/qthread_p.h>
#include <QEventLoop>
#include <QLocalSocket>
#include <QThread>
#include <memory>
#include <thread>

#include "support/Platform.h"
#include "support/RawServer.h"

namespace {

// Runs `call` on a thread of Qt's, which delivers without an application object.
template <typename Call>
void onQtThread(Call call) {
    const std::unique_ptr<QThread> thread(QThread::create([call] {
        QThreadData::get2(QThread::currentThread())->requiresCoreApplication = false;
        call();
    }));
    thread->start();
    ASSERT_TRUE(thread->wait(60'000));
}

}  // namespace

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
