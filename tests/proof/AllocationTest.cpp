// Every export while memory is short: the Nth allocation fails, for each N, once and for ever. The
// answer is the function's own or its failure, and afterwards everything works. Left out are those
// that have nothing to fail: bridgeFreeMemory takes no memory, and the catalogue has no key for
// bridgeConfGetI64 and bridgeConfSetI64, which are fatal before they take any.
#include <bridge/bridge.h>

#include <private/qthread_p.h>
#include <QCoreApplication>
#include <QLocalServer>
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
#include "support/EventPackets.h"
#include "support/FakeSocket.h"
#include "support/LogLines.h"
#include "support/NoCallbacks.h"
#include "support/Platform.h"
#include "support/RawServer.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
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

// Takes this process's error lines while it lives, into memory that no shortage can refuse.
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
    // The library looks for its folders once in a process.
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

    // Runs `call` in every shortage until one is long enough for nothing to fail. `check` gets what
    // the call answered, with plenty of memory again. Answers how many allocations were refused.
    template <typename Call, typename Check>
    static int inEveryShortage(Call call, Check check) {
        int shortages = 0;
        for (const Shortage kind : {Shortage::Once, Shortage::ForEver}) {
            for (int first = 0;; ++first) {
                SCOPED_TRACE((kind == Shortage::Once ? "once " : "for ever ") +
                             std::to_string(first));
                shortage = kind;
                startShortage(kind, first);
                auto answer = call();
                const bool failed = endShortage();
                check(answer);
                if (::testing::Test::HasFailure() || !failed) break;
                ++shortages;
            }
        }
        return shortages;
    }

    // A text is the one that comes with plenty of memory, or none after one error line with the
    // function's name.
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

    // A function that sets another value than the committed one answers 0 and has set it, or -1 and
    // has not; afterwards it does. Each shortage meets a key for which nothing is staged yet.
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

// Of an instance: what is staged for it takes memory each time.
constexpr const char* kName = "vtr.instance.Nougat64.display_name";
constexpr const char* kRules = "vtr.instance.Nougat64.grm_ignored_rules";
constexpr const char* kVsync = "vtr.instance.Nougat64.enable_vsync";

}  // namespace

TEST_F(AllocationTest, Getters) {
    expectText("bridgeConfGetString", [] { return bridgeConfGetString(kLocale); });
    expectText("bridgeConfGetMultiString", [] { return bridgeConfGetMultiString(kFolders); });
    // Short values take no memory, which a failure would tell of.
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
    bridgeConfSetI32(kDpi, 320);
    ASSERT_EQ(bridgeConfCommit(), 0);
    const std::string after = data.read("vantrel.conf");
    data.write("vantrel.conf", before);
    ASSERT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
    ASSERT_EQ(bridgeConfSetI32(kDpi, 320), 0);
    inEveryShortage([] { return bridgeConfCommit(); },
                    [&](bridge_i32 result) {
                        const std::string now = data.read("vantrel.conf");
                        EXPECT_TRUE(now == (result == 0 ? after : before)) << result;
                        data.write("vantrel.conf", before);
                        EXPECT_EQ(bridgeApiInitEx("Helper", 0, 0, "NUL"), 0);
                        EXPECT_EQ(bridgeConfSetI32(kDpi, 320), 0);
                        if (shortage == Shortage::Once) {
                            EXPECT_FALSE(data.has("vantrel.conf-temp"));
                        }
                    });
}

TEST_F(AllocationTest, CommitsIntoAnotherFile) {
    const std::string path = data / "copy.conf";
    ASSERT_EQ(bridgeConfCommitToFile(path.c_str()), 0);
    const std::string whole = data.read("copy.conf");
    ASSERT_FALSE(whole.empty());
    removeFile(path);
    const int shortages = inEveryShortage([&] { return bridgeConfCommitToFile(path.c_str()); },
                                          [&](bridge_i32 result) {
                                              EXPECT_EQ(data.has("copy.conf"), result == 0)
                                                  << result;
                                              if (data.has("copy.conf"))
                                                  EXPECT_EQ(data.read("copy.conf"), whole);
                                              EXPECT_EQ(bridgeConfCommitToFile(path.c_str()), 0);
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

namespace {

// What the callback was handed, in memory that is there.
int installedApps;
char lastInstalled[64];

}  // namespace

// On this thread, whose memory the test gives, as on the server's.
TEST_F(AllocationTest, Events) {
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

namespace {

// A server to which one client has come.
class OneClient : public QLocalServer {
 public:
    QLocalSocket* nextPendingConnection() override { return std::exchange(socket, nullptr); }
    QLocalSocket* socket = nullptr;
};

}  // namespace

// A connection comes whole, or its client is sent away.
TEST(ConnectionAllocationTest, AConnectionThatMemoryIsShortFor) {
    const std::string name = "server";
    const int before = IpcConnectionInfo::live();
    bool failed = true;
    int shortages = 0;
    for (int first = 0; failed; ++first, ++shortages) {
        auto socket = std::make_unique<FakeSocket>();
        OneClient server;
        server.socket = socket.get();
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

namespace {

// Qt's core in the same shortage, while it lives.
class QtInShortage {
 private:
    const ReplacedImport<void*(std::size_t)> malloc_{"malloc", allocateInShortage, "Qt5Core.dll"};
};

// Makes this thread one that delivers without an application object, while it lives.
class DeliveringThread {
 public:
    DeliveringThread() : before_(std::exchange(data()->requiresCoreApplication, false)) {}
    ~DeliveringThread() { data()->requiresCoreApplication = before_; }
    DeliveringThread(const DeliveringThread&) = delete;
    DeliveringThread& operator=(const DeliveringThread&) = delete;

 private:
    static QThreadData* data() { return QThreadData::get2(QThread::currentThread()); }

    const bool before_;
};

// The end of a connection, with everything that the event loop does then. False when no allocation
// had failed.
bool disconnectInShortage(const QPointer<QLocalSocket>& socket, Shortage kind, int first) {
    startShortage(kind, first);
    emit socket->disconnected();
    QCoreApplication::sendPostedEvents(socket.data());
    if (!socket.isNull()) {
        QCoreApplication::sendPostedEvents(socket.data(), QEvent::DeferredDelete);
    }
    return endShortage();
}

// Whether the socket was gone by then; the server frees the one whose deletion could not be queued.
std::string disconnectsInShortage(Shortage kind, int first) {
    const std::string name = "server";
    OneClient server;
    QPointer<QLocalSocket> socket = new FakeSocket;
    socket->setParent(&server);
    server.socket = socket.data();
    ipcHandleNewConnection(&server, bridgeDecode, &name);
    // A socket in memory is never connected, so that its disposal is queued already.
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

}  // namespace

// No exception reaches the event loop, and the socket goes: at once, later, or with its server.
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

namespace {

std::atomic<int> failingNext;  // the number of the allocation that fails next
std::atomic<int> started;
std::atomic<int> ended;
std::atomic<bool> wasMet;  // the last shortage

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

template <typename Condition>
bool waitUntil(Condition condition) {
    for (int i = 0; i < 2000 && !condition(); ++i) sleepMs(5);
    return condition();
}

// A client that comes, starts a shortage, and goes. Its end is dealt with when this returns.
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

// The shortage can refuse one client.
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

}  // namespace

// Each server has one shortage: it may keep a socket that could not be disposed of.
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

// A client on a thread of Qt's, whose socket waits for the event loop.
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

// The end, with a server: it stops whatever is short.
SUBPROCESS(finishesInAShortage) {
    RegistrySandbox registry;
    bridgeApiInitEx("Helper", 1, 0, "NUL");
    std::apply(bridgeRegisterCallbacks, noCallbacks(bridgeRegisterCallbacks));
    startShortage(arguments[0] == "once" ? Shortage::Once : Shortage::ForEver,
                  std::stoi(arguments[1]));
    const bridge_i32 result = bridgeApiFini();
    const bool failed = endShortage();
    if (result != 0) return 1;
    return failed ? 0 : 5;
}

// The server starts once per process: each shortage has a process of its own, and says whether it
// was long enough.
SUBPROCESS(registersInAShortage) {
    RegistrySandbox registry;
    bridgeApiInitEx("Helper", 1, 0, "NUL");
    startShortage(arguments[0] == "once" ? Shortage::Once : Shortage::ForEver,
                  std::stoi(arguments[1]));
    std::apply(bridgeRegisterCallbacks, noCallbacks(bridgeRegisterCallbacks));
    const bool failed = endShortage();
    std::apply(bridgeRegisterCallbacks, noCallbacks(bridgeRegisterCallbacks));
    if (bridgeApiFini() != 0) return 1;
    return failed ? 0 : 5;
}

namespace {

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

}  // namespace

TEST(AllocationSubprocessTest, DroppingAClient) {
    EXPECT_EQ(runSubprocess("dropsAClientInAShortage", {"0"}).status, 0u);
    EXPECT_EQ(runSubprocess("dropsAClientInAShortage", {"100"}).status, 5u);
}

TEST(AllocationSubprocessTest, Registering) { expectSweep("registersInAShortage"); }

TEST(AllocationSubprocessTest, Finishing) { expectSweep("finishesInAShortage"); }
