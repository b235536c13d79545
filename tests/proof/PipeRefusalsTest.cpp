// Pipes that Windows refuses, or answers for in the ways that it hardly ever does.
#include "ImportTable.h"
#include "ipc/IpcName.h"
#include "ipc/IpcServer.h"
#include "support/EventPackets.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/RawServer.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"

namespace {

using OddCreate = ReplacedImport<decltype(::CreateNamedPipeW)>;
using OddConnect = ReplacedImport<decltype(::ConnectNamedPipe)>;
using OddResult = ReplacedImport<decltype(::GetOverlappedResult)>;
using OddCancel = ReplacedImport<decltype(::CancelIoEx)>;
using RefusedSid = ReplacedImport<decltype(::AllocateAndInitializeSid)>;

std::string pipeName;

// What the pipe's instances were made with, in order.
struct Made {
    DWORD open;
    DWORD mode;
    bool isForEveryone;
    bool isInheritable;
};
std::mutex madeLock;
std::vector<Made> made;

// An access list whose one entry gives everyone everything.
bool isForEveryone(PSECURITY_DESCRIPTOR descriptor) {
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL list = nullptr;
    if (descriptor == nullptr ||
        !::GetSecurityDescriptorDacl(descriptor, &present, &list, &defaulted) || !present ||
        list == nullptr || list->AceCount != 1) {
        return false;
    }
    void* entry = nullptr;
    if (!::GetAce(list, 0, &entry)) return false;
    auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
    return allowed->Header.AceType == ACCESS_ALLOWED_ACE_TYPE && allowed->Mask == 0x001FFFFF &&
           ::IsWellKnownSid(&allowed->SidStart, WinWorldSid);
}

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

HANDLE WINAPI createWhenAllowed(LPCWSTR path, DWORD open, DWORD mode, DWORD count, DWORD out,
                                DWORD in, DWORD wait, LPSECURITY_ATTRIBUTES security) {
    if (const DWORD error = refusal; error != 0) {
        ++refused;
        ::SetLastError(error);
        return INVALID_HANDLE_VALUE;
    }
    {
        const std::lock_guard<std::mutex> guard(madeLock);
        made.push_back({open, mode, isForEveryone(security->lpSecurityDescriptor),
                        security->bInheritHandle != FALSE});
    }
    return systemFunction<decltype(::CreateNamedPipeW)>("CreateNamedPipeW")(
        path, open, mode, count, out, in, wait, security);
}

BOOL WINAPI connectWhenAllowed(HANDLE pipe, LPOVERLAPPED overlapped) {
    if (const DWORD error = refusal; error != 0) {
        ++refused;
        ::SetLastError(error);
        return FALSE;
    }
    return systemFunction<decltype(::ConnectNamedPipe)>("ConnectNamedPipe")(pipe, overlapped);
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
        const std::lock_guard<std::mutex> guard(seenLock);
        seenPackets.clear();
    }
    ~PipeRefusals() override { stop(); }

    void launch() { ASSERT_EQ(ipcServerInit(&thread, name, see), 0); }

    void start() {
        launch();
        ASSERT_TRUE(waitFor([this] { return ipcNameIsServed(name); }));
    }

    void stop() {
        IpcServerThread* running = std::exchange(thread, nullptr);
        if (running != nullptr) EXPECT_EQ(ipcServerFini(&running), 0);
    }

    template <typename Condition>
    static bool waitFor(Condition condition) {
        for (int i = 0; i < 2000; ++i) {
            if (condition()) return true;
            sleepMs(5);
        }
        return false;
    }

    Lines errors() const { return log.texts(XLOG_ERROR); }

    // The error line of a server that could not start.
    std::string awaitError() const {
        waitFor([this] { return !errors().empty(); });
        return errors().empty() ? std::string() : errors().back();
    }

    std::string listenError(int code, const std::string& why) const {
        return logged::notListening(name,
                                    std::to_string(code) + "(QLocalServer::listen: " + why + ")");
    }

    // A server that cannot start.
    void expectNoServer(const std::string& error) {
        launch();
        EXPECT_EQ(awaitError(), error);
        EXPECT_FALSE(ipcNameIsServed(name));
    }

    void expectNoAccessList(const std::string& error, DWORD told) {
        launch();
        ASSERT_TRUE(waitFor([this] { return errors().size() == 2; }));
        EXPECT_EQ(errors(), (Lines{"E XMUTEX AllocateAndInitializeSid Error " + error + "\n",
                                   listenError(-1, systemErrorText(static_cast<int>(told)))}));
        EXPECT_FALSE(ipcNameIsServed(name));
    }

    // Keeps so many connected clients.
    std::vector<std::unique_ptr<RawPipe>> connect(std::size_t count) const {
        std::vector<std::unique_ptr<RawPipe>> clients;
        while (clients.size() < count) {
            void* handle = nullptr;
            EXPECT_TRUE(waitFor([&] { return (handle = connectRaw(name)) != nullptr; }));
            clients.push_back(std::make_unique<RawPipe>(handle));
        }
        return clients;
    }

    // A client whose packet arrives.
    void expectServed(std::uint32_t opcode) const {
        const std::string packet = packetOf(opcode, "");
        const auto clients = connect(1);
        EXPECT_TRUE(clients[0]->write(packet));
        EXPECT_TRUE(waitFor([&] {
            const std::lock_guard<std::mutex> guard(seenLock);
            return !seenPackets.empty() && seenPackets.back() == packet;
        }));
    }

    std::string name;
    LogCapture log;
    IpcServerThread* thread = nullptr;
};

}  // namespace

TEST_F(PipeRefusals, AnotherProcessWasFirstAfterAll) {
    const OddCreate odd("CreateNamedPipeW", createWhenAllowed);
    refusal = ERROR_ACCESS_DENIED;
    launch();
    EXPECT_EQ(awaitError(), listenError(8, "Address in use"));
    EXPECT_EQ(refused, 1);
}

TEST_F(PipeRefusals, EveryInstanceIsForEveryoneOfThisMachineAndTheFirstClaimsTheName) {
    const OddCreate odd("CreateNamedPipeW", createWhenAllowed);
    made.clear();
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
        EXPECT_TRUE(made[i].isForEveryone) << i;
        EXPECT_FALSE(made[i].isInheritable) << i;
    }
}

// What the system frees on the way must not change what it has said.
TEST_F(PipeRefusals, TheErrorIsThatOfTheRefusedCall) {
    const OddCreate odd("CreateNamedPipeW", createWhenAllowed);
    const ReplacedImport<decltype(::LocalFree)> free("LocalFree", [](HLOCAL memory) -> HLOCAL {
        const HLOCAL left = systemFunction<decltype(::LocalFree)>("LocalFree")(memory);
        ::SetLastError(ERROR_INVALID_HANDLE);
        return left;
    });
    refusal = ERROR_ACCESS_DENIED;
    launch();
    EXPECT_EQ(awaitError(), listenError(8, "Address in use"));
}

// The access list is made once, so that a later shortage does not meet it.
TEST_F(PipeRefusals, AClientNeedsNoNewAccessList) {
    start();
    const RefusedSid sid("AllocateAndInitializeSid", failing<ERROR_NOT_ENOUGH_MEMORY, FALSE>);
    for (std::uint32_t i = 1; i <= 20; ++i) expectServed(i);
    EXPECT_EQ(errors(), Lines{});
}

TEST_F(PipeRefusals, TheNameIsFreeAgainThoughAClientKeepsItsEnd) {
    start();
    const auto clients = connect(12);
    stop();
    EXPECT_FALSE(ipcNameIsServed(name));
    start();
    expectServed(1);
    EXPECT_EQ(errors(), Lines{});
}

TEST_F(PipeRefusals, AnyOtherRefusalAtTheStartIsToldInTheSystemsWords) {
    const OddCreate odd("CreateNamedPipeW", createWhenAllowed);
    refusal = ERROR_INVALID_PARAMETER;
    expectNoServer(listenError(-1, systemErrorText(ERROR_INVALID_PARAMETER)));
}

TEST_F(PipeRefusals, WithoutAnAccessListThereIsNoPipe) {
    const RefusedSid sid("AllocateAndInitializeSid", failing<ERROR_NOT_ENOUGH_MEMORY, FALSE>);
    expectNoAccessList("8", ERROR_NOT_ENOUGH_MEMORY);
}

TEST_F(PipeRefusals, AnAccessListThatFailsWithoutAnErrorMakesNoPipe) {
    const RefusedSid sid("AllocateAndInitializeSid", failing<ERROR_SUCCESS, FALSE>);
    expectNoAccessList("0", ERROR_GEN_FAILURE);
}

TEST_F(PipeRefusals, AnInstanceThatFailsWithoutAnErrorDoesNotListen) {
    const OddConnect odd("ConnectNamedPipe", failing<ERROR_SUCCESS, FALSE>);
    expectNoServer(listenError(-1, systemErrorText(ERROR_GEN_FAILURE)));
}

TEST_F(PipeRefusals, AnInstanceThatCannotWaitForItsClientIsClosed) {
    const OddConnect odd("ConnectNamedPipe", connectWhenAllowed);
    refusal = ERROR_INVALID_PARAMETER;
    expectNoServer(listenError(-1, systemErrorText(ERROR_INVALID_PARAMETER)));
    stop();
    refusal = 0;
    start();
    expectServed(1);
}

// Every instance but the refused ones goes on; those come back, with one line for all attempts.
TEST_F(PipeRefusals, InstancesThatAreRefusedComeBackAndTheirClientsGetIn) {
    const OddCreate odd("CreateNamedPipeW", createWhenAllowed);
    start();
    const Lines line{"E IPC IpcLocalServer: no instance for the next client, error 1816"};
    for (std::size_t round = 1; round <= 2; ++round) {
        refusal = ERROR_NOT_ENOUGH_QUOTA;
        refused = 0;
        expectServed(10);
        ASSERT_TRUE(waitFor([] { return refused >= 4; })) << "it is tried again and again";
        EXPECT_EQ(errors(), Lines(round, line[0])) << "and complained about once";
        refusal = 0;
        const auto clients = connect(20);
        expectServed(20);
    }
}

TEST_F(PipeRefusals, WithTheLogOffAnInstanceComesBackWithoutAWord) {
    const OddCreate odd("CreateNamedPipeW", createWhenAllowed);
    start();
    {
        const LogOff off;
        refusal = ERROR_NOT_ENOUGH_QUOTA;
        expectServed(10);
        ASSERT_TRUE(waitFor([] { return refused >= 2; }));
        refusal = 0;
        expectServed(20);
        EXPECT_GT(off.refused(), 0);
        EXPECT_EQ(off.printed(), 0);
        stop();
    }
    EXPECT_EQ(errors(), Lines{});
}

// A client that comes between the creation of an instance and its wait.
TEST_F(PipeRefusals, AnInstanceWhoseWaitEndsAtOnceHasItsClient) {
    static RawPipe* early;
    const OddConnect odd("ConnectNamedPipe", [](HANDLE pipe, LPOVERLAPPED overlapped) -> BOOL {
        if (armed.exchange(0) != 0) early = new RawPipe(connectRaw(pipeName));
        const BOOL ok =
            systemFunction<decltype(::ConnectNamedPipe)>("ConnectNamedPipe")(pipe, overlapped);
        // The same, as a system would say it that takes it for no failure.
        return ok || ::GetLastError() == ERROR_PIPE_CONNECTED;
    });
    armed = 1;
    launch();
    ASSERT_TRUE(waitFor([] { return armed == 0; }));
    ASSERT_TRUE(waitFor([this] { return ipcNameIsServed(name); }));
    ASSERT_NE(early, nullptr);
    const std::string packet = packetOf(7, "early");
    EXPECT_TRUE(early->write(packet));
    EXPECT_TRUE(waitFor([&] {
        const std::lock_guard<std::mutex> guard(seenLock);
        return seenPackets == Lines{packet};
    }));
    delete std::exchange(early, nullptr);
    expectServed(1);
    EXPECT_EQ(errors(), Lines{});
}

// The connection of a client that has gone ends at once.
TEST_F(PipeRefusals, AWaitThatEndsWithAnErrorIsAClientToo) {
    const OddResult odd("GetOverlappedResult",
                        [](HANDLE pipe, LPOVERLAPPED overlapped, LPDWORD count, BOOL wait) -> BOOL {
                            const BOOL ok = systemFunction<decltype(::GetOverlappedResult)>(
                                "GetOverlappedResult")(pipe, overlapped, count, wait);
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

// The memory of an instance is the system's until the wait has ended.
TEST_F(PipeRefusals, TheEndWaitsForWaitsThatAreSlowToBeCancelled) {
    static std::atomic<int> cancelled;
    static std::vector<std::thread> slow;
    cancelled = 0;
    const OddCancel odd("CancelIoEx", [](HANDLE pipe, LPOVERLAPPED overlapped) -> BOOL {
        slow.emplace_back([pipe, overlapped] {
            sleepMs(20);
            ++cancelled;
            systemFunction<decltype(::CancelIoEx)>("CancelIoEx")(pipe, overlapped);
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
    const ReplacedImport<decltype(::CreateEventW)> odd("CreateEventW",
                                                       failing<ERROR_NOT_ENOUGH_MEMORY, nullptr>);
    expectNoServer(listenError(4, "Out of resources"));
}

// The server's own thread is Qt's first.
TEST_F(PipeRefusals, WithoutAThreadOfItsOwnTheServerSaysSo) {
    const ReplacedImport<decltype(::CreateThread)> odd(
        "CreateThread", failing<ERROR_NOT_ENOUGH_MEMORY, nullptr>, "Qt5Core.dll");
    launch();
    EXPECT_EQ(errors(), Lines{"E IPC ipcServerInit: no thread for server " + name});
    stop();
}

// The one that waits for clients is the second.
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

// Between the thread that waits for clients and the server's own there is a call through Qt, for
// which memory can be short.
TEST_F(PipeRefusals, AWordOfAClientThatCannotBePassedOnIsPassedOnLater) {
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
