// Pipe calls of Windows that fail, or have rare results.
#include "AccessList.h"
#include "ImportTable.h"
#include "ipc/IpcName.h"
#include "ipc/IpcServer.h"
#include "support/EventPackets.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RawServer.h"
#include "support/TestHeaders.h"
#include "support/WaitUntil.h"
#include "support/WindowsForTests.h"

namespace {

std::string pipeName;

// The arguments that the pipe's instances were created with, in order.
struct Made {
    DWORD open;
    DWORD mode;
    ACCESS_MASK rights;
    bool isInheritable;
};
std::mutex madeLock;
std::vector<Made> made;

std::atomic<DWORD> refusal;  // 0: none
std::atomic<int> refused;
std::atomic<int> armed;

// What the server received.
std::mutex seenLock;
Lines seenPackets;

bool see(QLocalSocket*, const std::uint8_t* packet, std::int32_t length, void*, std::int32_t) {
    const std::lock_guard<std::mutex> guard(seenLock);
    seenPackets.emplace_back(reinterpret_cast<const char*>(packet),
                             static_cast<std::size_t>(length));
    return true;
}

constexpr char kCreate[] = "CreateNamedPipeW";
constexpr char kConnect[] = "ConnectNamedPipe";
constexpr char kResult[] = "GetOverlappedResult";
constexpr char kCancel[] = "CancelIoEx";

bool isRefused() {
    const DWORD error = refusal;
    if (error == 0) return false;
    ++refused;
    ::SetLastError(error);
    return true;
}

HANDLE WINAPI createWhenAllowed(LPCWSTR path, DWORD open, DWORD mode, DWORD count, DWORD out,
                                DWORD in, DWORD wait, LPSECURITY_ATTRIBUTES security) {
    if (isRefused()) return INVALID_HANDLE_VALUE;
    {
        const std::lock_guard<std::mutex> guard(madeLock);
        made.push_back({open, mode, rightsOfEveryone(security->lpSecurityDescriptor),
                        security->bInheritHandle != FALSE});
    }
    return callSystem<kCreate, HANDLE>(path, open, mode, count, out, in, wait, security);
}

BOOL WINAPI connectWhenAllowed(HANDLE pipe, LPOVERLAPPED overlapped) {
    return isRefused() ? FALSE : callSystem<kConnect, BOOL>(pipe, overlapped);
}

class PipeRefusals : public ::testing::Test {
 protected:
    PipeRefusals() {
        static int count = 0;
        name =
            "vtr_test_refusals_" + std::to_string(ownProcessId()) + "_" + std::to_string(++count);
        pipeName = name;
        refusal = 0;
        refused = 0;
        armed = 0;
        made.clear();
        seenPackets.clear();
    }
    ~PipeRefusals() override { stop(); }

    void launch() { ASSERT_EQ(ipcServerInit(&thread, name, see), 0); }

    void start() {
        launch();
        ASSERT_TRUE(waitUntil([this] { return ipcNameIsServed(name); }));
    }

    void stop() {
        IpcServerThread* running = std::exchange(thread, nullptr);
        if (running != nullptr) EXPECT_EQ(ipcServerFini(&running), 0);
    }

    Lines errors() const { return log.texts(XLOG_ERROR); }

    // The last error line of a server that cannot start.
    std::string awaitError() const {
        waitUntil([this] { return !errors().empty(); });
        return errors().empty() ? std::string() : errors().back();
    }

    std::string listenError(int code, const std::string& why) const {
        return logged::notListening(name,
                                    std::to_string(code) + "(QLocalServer::listen: " + why + ")");
    }

    // Expects the server not to start, with this line.
    void expectNoServer(const std::string& error) {
        launch();
        EXPECT_EQ(awaitError(), error);
        EXPECT_FALSE(ipcNameIsServed(name));
    }

    void expectNoAccessList(const std::string& error, DWORD logged) {
        launch();
        ASSERT_TRUE(waitUntil([this] { return errors().size() == 2; }));
        EXPECT_EQ(errors(), (Lines{"E XMUTEX AllocateAndInitializeSid Error " + error + "\n",
                                   listenError(-1, systemErrorText(static_cast<int>(logged)))}));
        EXPECT_FALSE(ipcNameIsServed(name));
    }

    // This many connected clients.
    std::vector<std::unique_ptr<RawPipe>> connect(std::size_t count) const {
        std::vector<std::unique_ptr<RawPipe>> clients;
        while (clients.size() < count) {
            void* handle = nullptr;
            EXPECT_TRUE(waitUntil([&] { return (handle = connectRaw(name)) != nullptr; }));
            clients.push_back(std::make_unique<RawPipe>(handle));
        }
        return clients;
    }

    // Expects a client's packet to arrive.
    void expectServed(std::uint32_t opcode) const {
        const std::string packet = packetOf(opcode, "");
        const auto clients = connect(1);
        EXPECT_TRUE(clients[0]->write(packet));
        EXPECT_TRUE(waitUntil([&] { return lastSeen() == packet; }));
    }

    static std::string lastSeen() {
        const std::lock_guard<std::mutex> guard(seenLock);
        return seenPackets.empty() ? "" : seenPackets.back();
    }

    std::string name;
    LogCapture log;
    IpcServerThread* thread = nullptr;
};

}  // namespace

TEST_F(PipeRefusals, ANameThatAnotherProcessTakesFirst) {
    const auto odd = REPLACED(CreateNamedPipeW, createWhenAllowed);
    refusal = ERROR_ACCESS_DENIED;
    launch();
    EXPECT_EQ(awaitError(), listenError(8, "Address in use"));
    EXPECT_EQ(refused, 1);
}

TEST_F(PipeRefusals, EveryInstanceIsForEveryoneOfThisMachineAndTheFirstClaimsTheName) {
    const auto odd = REPLACED(CreateNamedPipeW, createWhenAllowed);
    start();
    expectServed(1);
    stop();
    const std::lock_guard<std::mutex> guard(madeLock);
    ASSERT_GE(made.size(), 9u) << "eight, and one in the place of the client's";
    for (std::size_t i = 0; i < made.size(); ++i) {
        EXPECT_EQ(made[i].open, PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED |
                                    (i == 0 ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0u))
            << i;
        EXPECT_EQ(made[i].mode, static_cast<DWORD>(PIPE_REJECT_REMOTE_CLIENTS)) << i;
        EXPECT_EQ(made[i].rights, 0x001FFFFFu) << i;
        EXPECT_FALSE(made[i].isInheritable) << i;
    }
}

// Freeing memory in between must not change the error.
TEST_F(PipeRefusals, TheErrorIsThatOfTheRefusedCall) {
    const auto odd = REPLACED(CreateNamedPipeW, createWhenAllowed);
    const auto free = REPLACED(LocalFree, [](HLOCAL memory) -> HLOCAL {
        const HLOCAL left = systemFunction<decltype(::LocalFree)>("LocalFree")(memory);
        ::SetLastError(ERROR_INVALID_HANDLE);
        return left;
    });
    refusal = ERROR_ACCESS_DENIED;
    launch();
    EXPECT_EQ(awaitError(), listenError(8, "Address in use"));
}

// The access list is made once, so a later shortage of memory does not matter.
TEST_F(PipeRefusals, AClientNeedsNoNewAccessList) {
    start();
    const auto sid = REPLACED(AllocateAndInitializeSid, failing<ERROR_NOT_ENOUGH_MEMORY, FALSE>);
    for (std::uint32_t i = 1; i <= 20; ++i) expectServed(i);
    EXPECT_EQ(errors(), Lines{});
}

TEST_F(PipeRefusals, TheNameIsFreeAgainAlthoughAClientKeepsItsEnd) {
    start();
    const auto clients = connect(12);
    stop();
    EXPECT_FALSE(ipcNameIsServed(name));
    start();
    expectServed(1);
    EXPECT_EQ(errors(), Lines{});
}

TEST_F(PipeRefusals, AnyOtherRefusalAtTheStartIsLoggedWithTheSystemsText) {
    const auto odd = REPLACED(CreateNamedPipeW, createWhenAllowed);
    refusal = ERROR_INVALID_PARAMETER;
    expectNoServer(listenError(-1, systemErrorText(ERROR_INVALID_PARAMETER)));
}

TEST_F(PipeRefusals, WithoutAnAccessListThereIsNoPipe) {
    const auto sid = REPLACED(AllocateAndInitializeSid, failing<ERROR_NOT_ENOUGH_MEMORY, FALSE>);
    expectNoAccessList("8", ERROR_NOT_ENOUGH_MEMORY);
}

TEST_F(PipeRefusals, AnAccessListThatFailsWithoutAnErrorMakesNoPipe) {
    const auto sid = REPLACED(AllocateAndInitializeSid, failing<ERROR_SUCCESS, FALSE>);
    expectNoAccessList("0", ERROR_GEN_FAILURE);
}

TEST_F(PipeRefusals, AnInstanceThatFailsWithoutAnErrorDoesNotListen) {
    const auto odd = REPLACED(ConnectNamedPipe, failing<ERROR_SUCCESS, FALSE>);
    expectNoServer(listenError(-1, systemErrorText(ERROR_GEN_FAILURE)));
}

TEST_F(PipeRefusals, AnInstanceThatCannotWaitForItsClientIsClosed) {
    const auto odd = REPLACED(ConnectNamedPipe, connectWhenAllowed);
    refusal = ERROR_INVALID_PARAMETER;
    expectNoServer(listenError(-1, systemErrorText(ERROR_INVALID_PARAMETER)));
    stop();
    refusal = 0;
    start();
    expectServed(1);
}

// The refused instances are retried, with one line for all attempts; the others continue.
TEST_F(PipeRefusals, InstancesThatAreRefusedComeBackAndTheirClientsGetIn) {
    const auto odd = REPLACED(CreateNamedPipeW, createWhenAllowed);
    start();
    const Lines line{"E IPC IpcLocalServer: no instance for the next client, error 1816"};
    for (std::size_t round = 1; round <= 2; ++round) {
        refusal = ERROR_NOT_ENOUGH_QUOTA;
        refused = 0;
        expectServed(10);
        ASSERT_TRUE(waitUntil([] { return refused >= 4; })) << "it is tried again and again";
        EXPECT_EQ(errors(), Lines(round, line[0])) << "and complained about once";
        refusal = 0;
        const auto clients = connect(20);
        expectServed(20);
    }
}

TEST_F(PipeRefusals, WithTheLogOffAnInstanceComesBackWithoutALine) {
    const auto odd = REPLACED(CreateNamedPipeW, createWhenAllowed);
    start();
    {
        const LogOff off;
        refusal = ERROR_NOT_ENOUGH_QUOTA;
        expectServed(10);
        ASSERT_TRUE(waitUntil([] { return refused >= 2; }));
        refusal = 0;
        expectServed(20);
        EXPECT_GT(off.refused(), 0);
        EXPECT_EQ(off.printed(), 0);
        stop();
    }
    EXPECT_EQ(errors(), Lines{});
}

// A client that connects between the creation of an instance and its wait.
TEST_F(PipeRefusals, AnInstanceWhoseWaitEndsAtOnceHasItsClient) {
    static RawPipe* early;
    const auto odd = REPLACED(ConnectNamedPipe, [](HANDLE pipe, LPOVERLAPPED overlapped) -> BOOL {
        if (armed.exchange(0) != 0) early = new RawPipe(connectRaw(pipeName));
        const BOOL ok = callSystem<kConnect, BOOL>(pipe, overlapped);
        // Succeeds, as it might on another system.
        return ok || ::GetLastError() == ERROR_PIPE_CONNECTED;
    });
    armed = 1;
    launch();
    ASSERT_TRUE(waitUntil([] { return armed == 0; }));
    ASSERT_TRUE(waitUntil([this] { return ipcNameIsServed(name); }));
    ASSERT_NE(early, nullptr);
    const std::string packet = packetOf(7, "early");
    EXPECT_TRUE(early->write(packet));
    EXPECT_TRUE(waitUntil([&] { return lastSeen() == packet; }));
    delete std::exchange(early, nullptr);
    expectServed(1);
    EXPECT_EQ(errors(), Lines{});
}

// The connection of a client that has left ends at once.
TEST_F(PipeRefusals, AWaitThatEndsWithAnErrorIsAClientToo) {
    const auto odd =
        REPLACED(GetOverlappedResult,
                 [](HANDLE pipe, LPOVERLAPPED overlapped, LPDWORD count, BOOL wait) -> BOOL {
                     const BOOL ok = callSystem<kResult, BOOL>(pipe, overlapped, count, wait);
                     if (!ok || armed.exchange(0) == 0) return ok;
                     ::SetLastError(ERROR_NO_DATA);
                     return FALSE;
                 });
    start();
    armed = 1;
    expectServed(1);
    EXPECT_EQ(armed, 0);
    expectServed(2);
    EXPECT_EQ(errors(), Lines{});
}

// The system uses an instance's memory until the wait has ended.
TEST_F(PipeRefusals, TheEndWaitsForWaitsThatAreSlowToBeCancelled) {
    static std::atomic<int> cancelled;
    static std::vector<std::thread> slow;
    cancelled = 0;
    const auto odd = REPLACED(CancelIoEx, [](HANDLE pipe, LPOVERLAPPED overlapped) -> BOOL {
        slow.emplace_back([pipe, overlapped] {
            sleepMs(20);
            ++cancelled;
            callSystem<kCancel, BOOL>(pipe, overlapped);
        });
        return TRUE;
    });
    start();
    expectServed(1);
    stop();
    EXPECT_EQ(cancelled, 8) << "none was given up before";
    for (std::thread& thread : slow) thread.join();
    slow.clear();
    EXPECT_FALSE(ipcNameIsServed(name));
}

TEST_F(PipeRefusals, WithoutAnEventNothingIsServed) {
    const auto odd = REPLACED(CreateEventW, failing<ERROR_NOT_ENOUGH_MEMORY, nullptr>);
    expectNoServer(listenError(4, "Out of resources"));
}

// The server's own thread is the first that Qt creates.
TEST_F(PipeRefusals, WithoutAThreadOfItsOwnTheServerSaysSo) {
    const ReplacedImport<decltype(::CreateThread)> odd(
        "CreateThread", failing<ERROR_NOT_ENOUGH_MEMORY, nullptr>, "Qt5Core.dll");
    launch();
    EXPECT_EQ(errors(), Lines{"E IPC ipcServerInit: no thread for server " + name});
    stop();
}

// The thread that waits for clients is the second.
TEST_F(PipeRefusals, WithoutAThreadThatWaitsForClientsNothingIsServed) {
    const ReplacedImport<decltype(::CreateThread)> odd(
        "CreateThread",
        [](LPSECURITY_ATTRIBUTES security, SIZE_T stack, LPTHREAD_START_ROUTINE start, LPVOID own,
           DWORD flags, LPDWORD id) -> HANDLE {
            if (++armed == 2) {
                ::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                return nullptr;
            }
            return systemFunction<decltype(::CreateThread)>("CreateThread")(security, stack, start,
                                                                            own, flags, id);
        },
        "Qt5Core.dll");
    expectNoServer(listenError(4, "Out of resources"));
    stop();
    start();
    expectServed(1);
}

// The thread that waits for clients notifies the server's own through Qt, which can run out of
// memory.
TEST_F(PipeRefusals, ANotificationOfAClientThatFailsIsRepeated) {
    using Invoke = bool(QObject*, void*, int, void*);
    const ReplacedImport<Invoke> odd(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14Connection"
        "TypeEPv",
        [](QObject* object, void* slot, int type, void* result) -> bool {
            if (armed.exchange(0) != 0) return false;
            return systemFunction<Invoke>(
                "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlot"
                "ObjectBaseEN2Qt14ConnectionTypeEPv",
                "Qt5Core.dll")(object, slot, type, result);
        });
    start();
    expectServed(1);
    armed = 1;
    expectServed(2);
    EXPECT_EQ(armed, 0);
}

TEST_F(PipeRefusals, ANameThatIsNotUtf8CannotBeServed) {
    name = "vtr_test_\xFF";
    expectNoServer(listenError(2, "Name error"));
}
