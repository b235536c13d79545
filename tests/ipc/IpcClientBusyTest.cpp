// A pipe of Windows whose instances are all taken.
#include "ipc/IpcClient.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RawServer.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"

TEST(IpcClientBusyTest, AServerWithAllInstancesBusyIsWaitedFor) {
    const std::string name = "vtr_test_busy_" + std::to_string(::GetCurrentProcessId());
    const std::wstring path = L"\\\\.\\pipe\\" + wideForTests(name);
    const HANDLE only =
        ::CreateNamedPipeW(path.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 64, 64, 0, nullptr);
    void* const other = connectRaw(name);
    ASSERT_NE(other, nullptr);
    const LogCapture log;
    IpcClient client;
    ipcClientInit(client, name);
    client.waitMs = 300;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ipcSendToServer(client, "packet", 6, true), -1);
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
    EXPECT_GT(waited.count(), 1.0);
    EXPECT_LT(waited.count(), 31.0);
    ASSERT_FALSE(log.texts(XLOG_WARNING).empty());
    EXPECT_TRUE(logged::isOfSlowSend(log.texts(XLOG_WARNING).back()));
    ::CloseHandle(other);
    ::CloseHandle(only);
}
