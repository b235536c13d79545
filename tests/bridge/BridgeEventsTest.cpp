// The event server's lifetime. There is one per process, so each test has its own process.
#include "bridge/BridgeEvents.h"

#include "HostCalls.h"
#include "ReplacedIpcCalls.h"
#include "bridge/BridgeDec.h"
#include "bridge/BridgeInit.h"
#include "ipc/IpcName.h"
#include "support/EventPackets.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RawServer.h"
#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "support/WaitUntil.h"

namespace {

constexpr const char* kServerName = "vtr_Uninstaller_bridge_nvo";

int failInit(IpcServerThread**, const std::string& name, IpcDecode) {
    std::printf("start of %s\n", name.c_str());
    return -9;
}

void initialise() { static_cast<void>(internal::bridgeApiInitEx("Uninstaller", true, 0, "NUL")); }

// Prints and clears the bridge's log lines and the host's calls.
void print(LogCapture& log) {
    for (const std::string& line : log.texts()) {
        if (line.find(" BRIDGE ") != std::string::npos) std::printf("%s\n", line.c_str());
    }
    for (const std::string& call : hostCalls) std::printf("%s\n", call.c_str());
    log.clear();
    hostCalls.clear();
}

// Decodes an event without a server.
void decodeOne() {
    const std::string packet = createInstanceCompletedPacket(0, "N");
    bridgeDecode(nullptr, reinterpret_cast<const std::uint8_t*>(packet.data()),
                 static_cast<std::int32_t>(packet.size()), nullptr, 0);
}

void waitUntilServed() {
    waitUntil([] { return ipcNameIsServed(kServerName); });
}

// Sends an event, and waits for the reply to the packet after it.
void sendOne() {
    RawPipe pipe(connectWhenFree(kServerName));
    const std::string event = createInstanceCompletedPacket(7, "N");
    pipe.write(event + packetOf(1, "", 1));
    pipe.read(1);
}

// The lines of an event, and of the invalid packet that sendOne() sends after it.
std::string eventLine(const std::string& status) {
    return logged::instanceCreated(status, "N") + "\n";
}

std::string refusalLine() { return logged::opcodeInvalid("1") + "\n"; }

}  // namespace

SUBPROCESS(registersBeforeInit) {
    const ReplacedIpcCalls failing(failInit);
    LogCapture log;
    internal::bridgeRegisterCallbacks(writingHost());
    decodeOne();
    print(log);
    return 0;
}

TEST(BridgeEventsTest, RegisteringBeforeTheInitialisationIsAnErrorAndStartsNothing) {
    EXPECT_EQ(subprocessOutput("registersBeforeInit"),
              "E BRIDGE bridgeRegisterCallbacks: called before bridgeApiInit\n" + eventLine("0"));
}

SUBPROCESS(failsToStart) {
    const ReplacedIpcCalls failing(failInit);
    initialise();
    LogCapture log;
    internal::bridgeRegisterCallbacks(writingHost());
    decodeOne();
    print(log);
    internal::bridgeRegisterCallbacks(writingHost());
    decodeOne();
    print(log);
    std::printf("fini %d\n", internal::bridgeApiFini());
    return 0;
}

TEST(BridgeEventsTest, AFailedStartSetsNoCallbacksAndIsNeverRetried) {
    EXPECT_EQ(subprocessOutput("failsToStart"),
              "start of vtr_Uninstaller_bridge_nvo\n"
              "I BRIDGE Bridge ipc ..\n"
              "E BRIDGE FATAL: Bridge IPC server init failed: err -9\n" +
                  eventLine("0") + eventLine("0") +
                  "onCreateInstanceCompleted(0|N)\n"
                  "fini 0\n");
}

SUBPROCESS(registersTwice) {
    initialise();
    LogCapture log;
    internal::bridgeRegisterCallbacks({});
    waitUntilServed();
    sendOne();
    print(log);
    internal::bridgeRegisterCallbacks(writingHost());
    sendOne();
    std::printf("fini %d\n", internal::bridgeApiFini());
    print(log);
    std::printf("served %d\n", ipcNameIsServed(kServerName) ? 1 : 0);
    return 0;
}

TEST(BridgeEventsTest, RegisteringAgainReplacesTheCallbacksOfTheRunningServer) {
    EXPECT_EQ(subprocessOutput("registersTwice"), "I BRIDGE Bridge ipc ..\n" + eventLine("7") +
                                                      refusalLine() + "fini 0\n" + eventLine("7") +
                                                      refusalLine() +
                                                      "onCreateInstanceCompleted(7|N)\n"
                                                      "served 0\n");
}

SUBPROCESS(finishesWithoutServer) {
    LogCapture log;
    std::printf("fini %d\n", internal::bridgeApiFini());
    initialise();
    std::printf("fini %d\n", internal::bridgeApiFini());
    internal::bridgeRegisterCallbacks(writingHost());
    waitUntilServed();
    sendOne();
    std::printf("fini %d\n", internal::bridgeApiFini());
    std::printf("fini %d\n", internal::bridgeApiFini());
    for (const std::string& call : hostCalls) std::printf("%s\n", call.c_str());
    return 0;
}

TEST(BridgeEventsTest, FinishingWithoutAServerDoesNothingAndOneCanStillStart) {
    EXPECT_EQ(subprocessOutput("finishesWithoutServer"),
              "fini 0\nfini 0\nfini 0\nfini 0\nonCreateInstanceCompleted(7|N)\n");
}

SUBPROCESS(registersAfterFini) {
    initialise();
    internal::bridgeRegisterCallbacks({});
    internal::bridgeApiFini();
    LogCapture log;
    internal::bridgeRegisterCallbacks(writingHost());
    std::printf("served %d\n", ipcNameIsServed(kServerName) ? 1 : 0);
    decodeOne();
    print(log);
    return 0;
}

TEST(BridgeEventsTest, AfterTheEndCallbacksAreSetButNoServerComesBack) {
    EXPECT_EQ(subprocessOutput("registersAfterFini"),
              "served 0\n"
              "E BRIDGE bridgeRegisterCallbacks: called after bridgeApiFini, no event will come\n" +
                  eventLine("0") + "onCreateInstanceCompleted(0|N)\n");
}

SUBPROCESS(finishesInACallback) {
    initialise();
    LogCapture log;
    BridgeCallbacks host{};
    host.onCreateInstanceCompleted = [](bridge_i32, const char*) {
        hostCalls.push_back("fini " + std::to_string(internal::bridgeApiFini()));
    };
    internal::bridgeRegisterCallbacks(host);
    waitUntilServed();
    sendOne();
    sendOne();
    std::printf("served %d\n", ipcNameIsServed(kServerName) ? 1 : 0);
    internal::bridgeApiFini();
    print(log);
    return 0;
}

TEST(BridgeEventsTest, FinishingInsideACallbackStopsNothing) {
    const std::string event =
        eventLine("7") + "E BRIDGE bridgeApiFini: called inside a callback, nothing is stopped\n" +
        refusalLine();
    EXPECT_EQ(subprocessOutput("finishesInACallback"),
              "served 1\nI BRIDGE Bridge ipc ..\n" + event + event + "fini 0\nfini 0\n");
}
