#include "ServerFixture.h"

#include "ipc/IpcConnection.h"
#include "ipc/IpcName.h"
#include "support/RawServer.h"
#include "support/WaitUntil.h"
#include "xpl/Xsystem.h"

Seen seen;

void Seen::clear() {
    const std::lock_guard<std::mutex> guard(lock);
    packets.clear();
    count = 0;
}

bool Seen::waitFor(std::size_t wanted, std::chrono::seconds limit) {
    std::unique_lock<std::mutex> guard(lock);
    return changed.wait_for(guard, limit, [&] { return count >= wanted; });
}

bool see(QLocalSocket*, const std::uint8_t* packet, std::int32_t length, void*, std::int32_t) {
    const std::lock_guard<std::mutex> guard(seen.lock);
    seen.packets.emplace_back(reinterpret_cast<const char*>(packet),
                              static_cast<std::size_t>(length));
    seen.thread = xsystemThreadId();
    ++seen.count;
    seen.changed.notify_all();
    return true;
}

ServerFixture::ServerFixture() {
    static int count = 0;
    name = "vtr_test_server_" + std::to_string(ownProcessId()) + "_" + std::to_string(++count);
    seen.clear();
}

ServerFixture::~ServerFixture() { stop(); }

void ServerFixture::start(IpcDecode decode) {
    ASSERT_EQ(ipcServerInit(&thread, name, decode), 0);
    ASSERT_TRUE(waitUntil([this] { return ipcNameIsServed(name); }));
}

void ServerFixture::stop() {
    IpcServerThread* running = std::exchange(thread, nullptr);
    if (running == nullptr) return;
    EXPECT_EQ(ipcServerFini(&running), 0);
    EXPECT_EQ(IpcConnectionInfo::live(), 0) << "every record has been released, and once";
}

bool ServerFixture::waitForRecords(int wanted) {
    return waitUntil([wanted] { return IpcConnectionInfo::live() == wanted; });
}

void* ServerFixture::connect() const { return connectWhenFree(name); }
