// Every export while memory is short: for each N, the Nth allocation fails, alone or with all later
// ones. The function succeeds or returns its failure, and works again afterwards. bridgeFreeMemory,
// bridgeConfGetI64 and bridgeConfSetI64 allocate nothing.
#include <bridge/bridge.h>

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <cstdarg>

#include "Allocations.h"
#include "ImportTable.h"
#include "ProgramFunctions.h"
#include "bridge/BridgeDec.h"
#include "bridge/BridgeIpcClbk.h"
#include "conf/Conf.h"
#include "ipc/IpcClient.h"
#include "ipc/IpcConnection.h"
#include "support/DeliveringThread.h"
#include "support/EventPackets.h"
#include "support/FakeSocket.h"
#include "support/LogLines.h"
#include "support/NoCallbacks.h"
#include "support/RawServer.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WaitUntil.h"
#include "xpl/Xlog.h"

namespace {

constexpr const char* kDpi = "vtr.instance.Nougat64.dpi";
constexpr const char* kLocale = "vtr.locale";
constexpr const char* kFolders = "vtr.shared_folders";

std::optional<std::string> taken(char* text) {
    if (text == nullptr) return std::nullopt;
    std::string copy = text;
    bridgeFreeMemory(text);
    return copy;
}

// Captures this process's error lines while it lives, without allocating.
class ErrorLines {
 public:
    ErrorLines() : previous_(xlogGetLogger()) {
        const XlogLogger own{isError, take};
        static_cast<void>(xlogLibInit(&own, {}));
        clear();
    }
    ~ErrorLines() { static_cast<void>(xlogLibInit(&previous_, {})); }
    ErrorLines(const ErrorLines&) = delete;
    ErrorLines& operator=(const ErrorLines&) = delete;

    static int count() { return count_; }
    static std::string last() { return last_; }
    static void clear() {
        count_ = 0;
        last_[0] = '\0';
    }

 private:
    static std::int32_t isError(std::int32_t, std::int32_t level) { return level == XLOG_ERROR; }

    static std::int32_t take(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                             const char* format, ...) XPRINTF_LIKE(6, 7) {
        std::va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(last_, sizeof last_, format, arguments);
        va_end(arguments);
        ++count_;
        return length;
    }

    static inline int count_ = 0;
    static inline char last_[1000];
    XlogLogger previous_;
};

class AllocationTest : public ::testing::Test {
 protected:
    // The library looks its folders up once per process.
    static void SetUpTestSuite() {
        folder = new TempFolder;
        registry = new RegistrySandbox;
        for (const char* name :
             {"Logs", "Engine", "Engine\\Nougat64", "Engine\\Nougat64\\AppCache"}) {
            folder->makeFolder(name);
        }
        registry->set("UserDefinedDir", folder->path());
        registry->set("InstallDir", "C:\\None\\");
    }
    static void TearDownTestSuite() {
        delete registry;
        delete folder;
    }

    AllocationTest() {
        data.write("Engine\\Nougat64\\AppCache\\AppCache.json",
                   R"([{"package":"com.a","activity":"M","appLabel":"A","versionCode":7,)"
                   R"("versionName":"1"}])");
        data.write("vantrel.conf",
                   "vtr.instance.Nougat64.dpi=\"240\"\nvtr.locale=\"en-US\"\n"
                   "vtr.enable_adb_access=\"1\"\n");
        EXPECT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
        confDiscardChanges(confStore());
    }

    // Runs `call` in each shortage until nothing fails in it. `check` gets the call's result, with
    // enough memory again. Returns how many allocations were refused.
    template <typename Call, typename Check>
    static int inEveryShortage(Call call, Check check) {
        int shortages = 0;
        for (const Shortage kind : {Shortage::Once, Shortage::ForEver}) {
            for (int first = 0;; ++first) {
                SCOPED_TRACE((kind == Shortage::Once ? "once " : "for ever ") +
                             std::to_string(first));
                shortage = kind;
                startShortage(kind, first);
                auto result = call();
                const bool failed = endShortage();
                check(result);
                if (::testing::Test::HasFailure() || !failed) break;
                ++shortages;
            }
        }
        return shortages;
    }

    // Expects the call to return the same text as with enough memory, or null after one error line
    // with the function's name.
    static void expectText(const std::string& name, const std::function<char*()>& call) {
        const std::optional<std::string> plenty = taken(call());
        ASSERT_TRUE(plenty.has_value());
        const ErrorLines errors;
        const int shortages = inEveryShortage(call, [&](char* text) {
            const std::optional<std::string> answer = taken(text);
            EXPECT_EQ(answer.value_or(*plenty), *plenty);
            EXPECT_EQ(errors.count(), answer ? 0 : 1);
            const std::string start =
                answer ? "" : logged::messageOf(logged::exceptionCaught("BRIDGE", name));
            EXPECT_EQ(errors.last().substr(0, start.size()), start);
            errors.clear();
            EXPECT_EQ(taken(call()), plenty) << "afterwards";
            EXPECT_EQ(errors.count(), 0) << errors.last();
        });
        EXPECT_GT(shortages, 0);
    }

    // Expects a call that sets a new value to return 0 and set it, or to return -1 and leave the
    // old one. Before each shortage nothing is staged for the key.
    static void expectSet(const std::function<bridge_i32()>& set,
                          const std::function<std::string()>& get) {
        const std::string committed = get();
        confDiscardChanges(confStore());
        ASSERT_EQ(set(), 0);
        const std::string wanted = get();
        ASSERT_NE(wanted, committed);
        confDiscardChanges(confStore());
        const int shortages = inEveryShortage(set, [&](bridge_i32 result) {
            EXPECT_TRUE(result == 0 || result == -1) << result;
            EXPECT_EQ(get(), result == 0 ? wanted : committed) << result;
            EXPECT_EQ(set(), 0);
            EXPECT_EQ(get(), wanted);
            confDiscardChanges(confStore());
        });
        EXPECT_GT(shortages, 1) << "once and for ever";
    }

    static inline Shortage shortage{};
    static inline TempFolder* folder = nullptr;
    static inline RegistrySandbox* registry = nullptr;
    const TempFolder& data = *folder;
};

constexpr const char* kAccess = "vtr.enable_adb_access";  // committed: 1

// Of an instance, for which each set allocates.
constexpr const char* kName = "vtr.instance.Nougat64.display_name";
constexpr const char* kRules = "vtr.instance.Nougat64.grm_ignored_rules";
constexpr const char* kVsync = "vtr.instance.Nougat64.enable_vsync";

TEST_F(AllocationTest, Getters) {
    expectText("bridgeConfGetString", [] { return bridgeConfGetString(kLocale); });
    expectText("bridgeConfGetMultiString", [] { return bridgeConfGetMultiString(kFolders); });
    // Short values need no allocation.
    const ErrorLines errors;
    EXPECT_EQ(inEveryShortage([] { return bridgeConfGetI32(kDpi); },
                              [](bridge_i32 dpi) { EXPECT_EQ(dpi, 240); }),
              0);
    EXPECT_EQ(inEveryShortage([] { return bridgeConfGetBool(kAccess); },
                              [](bridge_bool value) { EXPECT_EQ(value, 1); }),
              0);
    EXPECT_EQ(errors.count(), 0) << errors.last();
}

TEST_F(AllocationTest, Setters) {
    expectSet([] { return bridgeConfSetI32(kDpi, 320); },
              [] { return std::to_string(bridgeConfGetI32(kDpi)); });
    expectSet([] { return bridgeConfSetString(kName, "Jeux"); },
              [] { return taken(bridgeConfGetString(kName)).value_or("none"); });
    expectSet([] { return bridgeConfSetMultiString(kRules, "a,b"); },
              [] { return taken(bridgeConfGetMultiString(kRules)).value_or("none"); });
    expectSet([] { return bridgeConfSetBool(kVsync, 1); },
              [] { return std::to_string(bridgeConfGetBool(kVsync)); });
}

TEST_F(AllocationTest, ALongTextIsSetWholeOrNotAtAll) {
    const std::string text(60, 'x');
    const int shortages = inEveryShortage(
        [&] { return bridgeConfSetString(kLocale, text.c_str()); },
        [&](bridge_i32 result) {
            EXPECT_EQ(taken(bridgeConfGetString(kLocale)), result == 0 ? text : "en-US") << result;
            EXPECT_EQ(bridgeConfSetString(kLocale, "en-US"), 0);
        });
    EXPECT_GT(shortages, 1);
}

TEST_F(AllocationTest, ASetOfAnUnknownInstance) {
    int number = 0;
    std::string dpi = "vtr.instance.Nougat64_0.dpi";
    std::string name = "vtr.instance.Nougat64_0.display_name";
    const auto set = [&dpi] { return bridgeConfSetI32(dpi.c_str(), 99); };
    const int shortages = inEveryShortage(set, [&](bridge_i32 result) {
        EXPECT_TRUE(result == 0 || result == -1) << result;
        EXPECT_EQ(set(), 0);
        EXPECT_EQ(bridgeConfGetI32(dpi.c_str()), 99);
        EXPECT_EQ(taken(bridgeConfGetString(name.c_str())), "Vantrel") << "no default is missing";
        const std::string prefix = "vtr.instance.Nougat64_" + std::to_string(++number) + ".";
        dpi = prefix + "dpi";
        name = prefix + "display_name";
    });
    EXPECT_GT(shortages, 4);
}

TEST_F(AllocationTest, Commits) {
    ASSERT_EQ(bridgeConfCommitToFile((data / "vantrel.conf").c_str()), 0);
    const std::string before = data.read("vantrel.conf");
    const auto startOver = [&] {
        data.write("vantrel.conf", before);
        EXPECT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
        EXPECT_EQ(bridgeConfSetI32(kDpi, 320), 0);
    };
    startOver();
    ASSERT_EQ(bridgeConfCommit(), 0);
    const std::string after = data.read("vantrel.conf");
    startOver();
    inEveryShortage(bridgeConfCommit, [&](bridge_i32 result) {
        EXPECT_TRUE(data.read("vantrel.conf") == (result == 0 ? after : before)) << result;
        if (shortage == Shortage::Once) EXPECT_FALSE(data.has("vantrel.conf-temp"));
        startOver();
    });
}

TEST_F(AllocationTest, CommitsIntoAnotherFile) {
    const std::string path = data / "copy.conf";
    ASSERT_EQ(bridgeConfCommitToFile(path.c_str()), 0);
    const std::string whole = data.read("copy.conf");
    ASSERT_FALSE(whole.empty());
    removeFile(path);
    const auto commit = [&] { return bridgeConfCommitToFile(path.c_str()); };
    const int shortages = inEveryShortage(commit, [&](bridge_i32 result) {
        EXPECT_EQ(data.has("copy.conf"), result == 0) << result;
        if (data.has("copy.conf")) EXPECT_EQ(data.read("copy.conf"), whole);
        EXPECT_EQ(commit(), 0);
        EXPECT_EQ(data.read("copy.conf"), whole);
        EXPECT_FALSE(data.has("copy.conf-temp"));
        removeFile(path);
    });
    EXPECT_GT(shortages, 1);
}

TEST_F(AllocationTest, Initialisation) {
    const std::function<bridge_i32()> starts[] = {
        [] { return bridgeApiInitEx("Helper", 0, 0, "NUL"); },
        [] { return bridgeApiInit("Helper"); }};
    for (const auto& start : starts) {
        const int shortages = inEveryShortage(start, [](bridge_i32 result) {
            EXPECT_TRUE(result == 0 || result == -1) << result;
            EXPECT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
            EXPECT_EQ(bridgeConfGetI32(kDpi), 240);
        });
        EXPECT_GT(shortages, 1);
    }
}

// Decodes on this thread, instead of the server's.
TEST_F(AllocationTest, Events) {
    static int installedApps;
    static char lastInstalled[64];
    BridgeCallbacks callbacks{};
    callbacks.onAppInstalled = [](const char* instance, const char* package, const char*,
                                  const char*, bridge_i32 version, const char*, const char*,
                                  bridge_bool) {
        ++installedApps;
        std::snprintf(lastInstalled, sizeof lastInstalled, "%s %s %d", instance, package, version);
    };
    callbacks.onInstanceConfigurationChanged = [](const char*) { ++installedApps; };
    bridgeSetCallbacks(callbacks);
    const std::string installed =
        appInstalledPacket("Nougat64", "com.a", "M", std::string(100, 'L'), 7, "1", "C:\\a.png", 0);
    const std::string changed = instanceConfigurationChangedPacket("Nougat64");
    const ErrorLines errors;
    for (const std::string& packet : {installed, changed}) {
        const auto dispatch = [&packet] {
            installedApps = 0;
            bool known = false;
            try {
                known = bridgeDecode(nullptr, reinterpret_cast<const std::uint8_t*>(packet.data()),
                                     static_cast<std::int32_t>(packet.size()), nullptr, 0);
            } catch (const std::bad_alloc&) {
                return -1;  // the connection logs it
            }
            return known ? 1 : 0;
        };
        inEveryShortage(dispatch, [&](int) {
            EXPECT_EQ(dispatch(), 1) << "afterwards";
            EXPECT_EQ(installedApps, 1);
        });
    }
    EXPECT_STREQ(lastInstalled, "Nougat64 com.a 7");
    bridgeSetCallbacks({});
}

TEST_F(AllocationTest, Listings) {
    expectText("bridgeConfGetInstances", [] { return bridgeConfGetInstances(); });
    expectText("bridgeGetInstalledApps", [] { return bridgeGetInstalledApps("Nougat64"); });
}

TEST_F(AllocationTest, Programs) {
    static constexpr const char* texts[] = {PROGRAM_SAMPLES};
#define LAUNCH(function, count, arguments) [] { return function arguments; },
    const std::function<bridge_i32()> launches[] = {PROGRAM_FUNCTIONS(LAUNCH)};
#undef LAUNCH
    for (const auto& launch : launches) {
        ASSERT_EQ(launch(), 2) << "there is no such program";
        inEveryShortage(launch, [&](bridge_i32 result) {
            EXPECT_TRUE(result == 2 || result == -1) << result;
            EXPECT_EQ(launch(), 2);
        });
    }
}

TEST_F(AllocationTest, Requests) {
    inEveryShortage([] { return bridgePlrShutdown("Nougat64", 1); },
                    [](bridge_i32 result) {
                        EXPECT_TRUE(result == 0 || result == -1) << result;
                        EXPECT_EQ(bridgePlrShutdown("Nougat64", 1), 0);
                    });
    inEveryShortage([] { return bridgeShutdown(), 0; }, [](int) { bridgeShutdown(); });
}

// A connection is accepted completely, or closed.
TEST(ConnectionAllocationTest, AConnectionThatMemoryIsShortFor) {
    const std::string name = "server";
    const int before = IpcConnectionInfo::live();
    bool failed = true;
    int shortages = 0;
    for (int first = 0; failed; ++first, ++shortages) {
        auto socket = std::make_unique<FakeSocket>();
        OneSocketServer server(socket.get());
        bool thrown = false;
        startShortage(Shortage::Once, first);
        try {
            ipcHandleNewConnection(&server, bridgeDecode, &name);
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        failed = endShortage();
        EXPECT_EQ(thrown, failed);
        EXPECT_EQ(socket->isOpen(), !failed) << first;
        socket.reset();
        EXPECT_EQ(IpcConnectionInfo::live(), before) << first;
    }
    EXPECT_GT(shortages, 3);
}

// Includes Qt5Core in the shortage while it lives.
class QtInShortage {
 private:
    const ReplacedImport<void*(std::size_t)> malloc_{"malloc", allocateInShortage, "Qt5Core.dll"};
};

// Ends a connection, and runs the events that follow. Returns false when no allocation failed.
bool disconnectInShortage(const QPointer<QLocalSocket>& socket, Shortage kind, int first) {
    startShortage(kind, first);
    emit socket->disconnected();
    QCoreApplication::sendPostedEvents(socket.data());
    if (!socket.isNull()) {
        QCoreApplication::sendPostedEvents(socket.data(), QEvent::DeferredDelete);
    }
    return endShortage();
}

// Returns whether an allocation failed and whether the socket has been deleted. If the deletion
// cannot be queued, the server deletes the socket.
std::string disconnectsInShortage(Shortage kind, int first) {
    const std::string name = "server";
    QPointer<QLocalSocket> socket = new FakeSocket;
    OneSocketServer server(socket.data());
    socket->setParent(&server);
    ipcHandleNewConnection(&server, bridgeDecode, &name);
    // A socket in memory is never connected, so its disposal is already queued.
    QCoreApplication::removePostedEvents(socket.data());
    const ErrorLines errors;
    const bool failed = disconnectInShortage(socket, kind, first);
    EXPECT_EQ(errors.count() > 0, failed);
    if (failed) {
        EXPECT_EQ(errors.last(), logged::messageOf(logged::exceptionCaught(
                                     "IPC", "ipcDestroyConnection", std::bad_alloc().what())));
    }
    EXPECT_EQ(IpcConnectionInfo::live(), socket.isNull() ? 0 : 1);
    return std::string(failed ? "short" : "plenty") + (socket.isNull() ? ", gone" : ", stays");
}

// No exception reaches the event loop, and the socket is deleted: at once, later, or by its server.
TEST(ConnectionAllocationTest, ADisconnectThatMemoryIsShortFor) {
    const DeliveringThread delivering;
    const QtInShortage qt;
    for (const Shortage kind : {Shortage::Once, Shortage::ForEver}) {
        int stayed = 0;
        int gone = 0;
        for (std::string outcome; outcome != "plenty, gone";) {
            SCOPED_TRACE(stayed + gone);
            ASSERT_LT(stayed + gone, 100);
            outcome = disconnectsInShortage(kind, stayed + gone);
            ASSERT_NE(outcome, "plenty, stays");
            ASSERT_EQ(IpcConnectionInfo::live(), 0) << "after the server";
            ++(outcome == "short, stays" ? stayed : gone);
        }
        EXPECT_GT(stayed, 1) << "the call and its event";
        EXPECT_GT(gone, 1);
    }
}

std::atomic<int> failingNext;  // the number of the allocation that fails next
std::atomic<int> started;
std::atomic<int> ended;
std::atomic<bool> wasMet;  // an allocation failed in the last shortage

// A packet starts a shortage on the server's thread, and another one ends it.
bool startOrEndShortage(QLocalSocket*, const std::uint8_t* packet, std::int32_t, void*,
                        std::int32_t) {
    if (packet[0] == 1) {
        startShortage(Shortage::Once, failingNext);
        ++started;
    } else {
        wasMet = endShortage();
        ++ended;
    }
    return true;
}

// A client that starts a shortage and leaves. Returns when its end has been handled.
void startShortageOf(const std::string& server) {
    const int before = started;
    const int refused = refusedAllocations();
    RawPipe pipe(connectWhenFree(server));
    EXPECT_TRUE(pipe.write(packetOf(1, "")));
    EXPECT_TRUE(waitUntil([&] { return started > before; }));
    pipe.close();
    EXPECT_TRUE(waitUntil(
        [&] { return IpcConnectionInfo::live() == 0 || refusedAllocations() > refused; }));
}

// The shortage may refuse one client.
void endShortageOf(const std::string& server) {
    const int before = ended;
    for (int i = 0; i < 2 && ended == before; ++i) {
        const int refused = refusedAllocations();
        RawPipe pipe(connectWhenFree(server));
        pipe.write(packetOf(2, ""));
        waitUntil([&] { return ended > before || refusedAllocations() > refused; });
    }
    EXPECT_GT(ended, before);
}

// A server per shortage, since it may keep a socket that could not be deleted.
TEST(ConnectionAllocationTest, TheServersThreadOutlivesEachShortage) {
    const std::string name = "vtr_test_allocation_" + std::to_string(ownProcessId());
    int shortages = 0;
    for (wasMet = true; wasMet && !HasFailure(); ++shortages) {
        SCOPED_TRACE(shortages);
        failingNext = shortages;
        IpcServerThread* server = nullptr;
        ASSERT_EQ(ipcServerInit(&server, name, startOrEndShortage), 0);
        startShortageOf(name);
        if (!HasFailure()) endShortageOf(name);
        ipcServerFini(&server);
        ASSERT_EQ(IpcConnectionInfo::live(), 0);
    }
    EXPECT_GT(shortages, 4);
}

// A client on a Qt thread, whose event loop deletes the socket.
SUBPROCESS(dropsAClientInAShortage) {
    int result = 1;
    const std::unique_ptr<QThread> thread(QThread::create([&arguments, &result] {
        auto client = std::make_unique<IpcClient>();
        ipcClientInit(*client, "nobody");
        const QPointer<QLocalSocket> socket(client->socket.get());
        const QtInShortage qt;
        startShortage(Shortage::Once, std::stoi(arguments[0]));
        client.reset();
        const bool failed = endShortage();
        if (failed == socket.isNull()) result = failed ? 0 : 5;
    }));
    thread->start();
    thread->wait();
    return result;
}

// The arguments: a kind of shortage, and the number of the first allocation that fails.
void startShortage(const SubprocessArguments& arguments) {
    startShortage(arguments[0] == "once" ? Shortage::Once : Shortage::ForEver,
                  std::stoi(arguments[1]));
}

void registerNoCallbacks() {
    std::apply(bridgeRegisterCallbacks, noCallbacks(bridgeRegisterCallbacks));
}

SUBPROCESS(finishesInAShortage) {
    RegistrySandbox registry;
    bridgeApiInitEx("Helper", 1, 0, "NUL");
    registerNoCallbacks();
    startShortage(arguments);
    const bridge_i32 result = bridgeApiFini();
    const bool failed = endShortage();
    if (result != 0) return 1;
    return failed ? 0 : 5;
}

// The server starts once per process, so each shortage has its own.
SUBPROCESS(registersInAShortage) {
    RegistrySandbox registry;
    bridgeApiInitEx("Helper", 1, 0, "NUL");
    startShortage(arguments);
    registerNoCallbacks();
    const bool failed = endShortage();
    registerNoCallbacks();
    if (bridgeApiFini() != 0) return 1;
    return failed ? 0 : 5;
}

void expectSweep(const std::string& subprocess) {
    for (const char* kind : {"once", "for ever"}) {
        std::uint32_t status = 0;
        for (int first = 0; status == 0; ++first) {
            ASSERT_LT(first, 200);
            status = runSubprocess(subprocess, {kind, std::to_string(first)}).status;
        }
        EXPECT_EQ(status, 5u) << kind;
    }
}

TEST(AllocationSubprocessTest, DroppingAClient) {
    EXPECT_EQ(runSubprocess("dropsAClientInAShortage", {"0"}).status, 0u);
    EXPECT_EQ(runSubprocess("dropsAClientInAShortage", {"100"}).status, 5u);
}

TEST(AllocationSubprocessTest, Registering) { expectSweep("registersInAShortage"); }

TEST(AllocationSubprocessTest, Finishing) { expectSweep("finishesInAShortage"); }

}  // namespace
