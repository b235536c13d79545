// Refused and successful calls with every log level off: the same results, and no line.
#include "HostCalls.h"
#include "ReplacedIpcCalls.h"
#include "appc/AppcStore.h"
#include "bridge/BridgeApps.h"
#include "bridge/BridgeDec.h"
#include "bridge/BridgeEntry.h"
#include "bridge/BridgeEvents.h"
#include "bridge/BridgeInit.h"
#include "bridge/BridgeShutdown.h"
#include "conf/Conf.h"
#include "support/EventPackets.h"
#include "support/RegistrySandbox.h"
#include "support/SilentCalls.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

namespace {

bool decode(const std::string& packet) {
    return bridgeDecode(nullptr, reinterpret_cast<const std::uint8_t*>(packet.data()),
                        static_cast<std::int32_t>(packet.size()), nullptr, 0);
}

int failInit(IpcClient&, const std::string&) { return -7; }

int failToListen(IpcServerThread**, const std::string&, IpcDecode) { return -9; }

int countOfHostCalls() { return static_cast<int>(hostCalls.size()); }

int decodeKnownEvents() {
    for (const KnownEvent& event : knownEvents()) {
        EXPECT_TRUE(decode(eventPacket(event, exampleOf(event)))) << event.name;
    }
    return countOfHostCalls();
}

int statusFor(const char* text) {
    return bridgeStatus("f", {"a", text}, [] { return XErr{0}; });
}

int valueFor(const char* text) {
    return bridgeValue<int>("f", {text}, [] { return 5; });
}

bool listsWithoutALock() {
    const TempFolder folder;
    AppcStore store(appcDiskFiles(), folder.path() + "\\", folder.path() + "\\Shared\\");
    return internal::bridgeGetInstalledApps(store, "a\\b").has_value();
}

}  // namespace

TEST(BridgeLogOffTest, WhatIsRefusedOrPassedOnIsSoInSilence) {
    const TempFolder folder;
    const LogCapture log;  // for the calls before and after those with the log off
    ASSERT_EQ(confLibInit(confStore(), folder.write("vantrel.conf", ""), false), 0);
    hostCalls.clear();
    bridgeSetCallbacks(writingHost());
    const auto events = static_cast<int>(knownEvents().size());
    const ReplacedIpcCalls failing(failInit);
    expectSilence({
        {"events reach the host", events, kSomeLines, decodeKnownEvents},
        {"a packet of seven bytes", false, 1, [] { return decode("seven b"); }},
        {"an opcode below those of events", false, 1, [] { return decode(packetOf(2999, "")); }},
        {"an event without its texts", false, 1, [] { return decode(packetOf(3001, "")); }},
        {"none of those reached the host", events, 0, countOfHostCalls},
        {"a status", 0, 0, [] { return statusFor("b"); }},
        {"a status for a null text", XERR_INVAL, 1, [] { return statusFor(nullptr); }},
        {"a value", 5, 0, [] { return valueFor("b"); }},
        {"a value for a null text", 0, 1, [] { return valueFor(nullptr); }},
        {"a listing without a lock", false, kSomeLines, listsWithoutALock},
        {"a client that cannot be prepared", -7, 2,
         [] { return internal::bridgePlrShutdown("Nougat64", true); }},
        {"clients that cannot be prepared", 0, 2,
         [] {
             internal::bridgeShutdown();
             return 0;
         }},
    });
    bridgeSetCallbacks({});
}

// The initialisation installs the library's own logger, so only the steps before it are silent.
SUBPROCESS(initialisesInSilence) {
    RegistrySandbox registry;
    const TempFolder folder;
    const LogOff off;
    if (internal::bridgeApiInitEx("Nobody", true, 0, "NUL") != XERR_INVAL) return 1;
    if (internal::bridgeApiInitEx("Launcher", true, 0, "NUL") != -1) return 2;
    if (off.refused() != 2 || off.printed() != 0) return 3;
    const ReplacedIpcCalls failing(failToListen);
    internal::bridgeRegisterCallbacks(writingHost());
    if (off.refused() != 3) return 4;
    return 0;
}

TEST(BridgeLogOffSubprocessTest, ClientsThatAreRefused) {
    EXPECT_EQ(runSubprocess("initialisesInSilence").status, 0u);
}

SUBPROCESS(registersInSilence) {
    RegistrySandbox registry;
    if (internal::bridgeApiInitEx("Uninstaller", true, 0, "NUL") != 0) return 1;
    const LogOff off;
    const ReplacedIpcCalls failing(failToListen);
    internal::bridgeRegisterCallbacks(writingHost());
    internal::bridgeRegisterCallbacks({});
    if (!decode(createInstanceCompletedPacket(0, "N")) || !hostCalls.empty()) return 2;
    if (internal::bridgeApiFini() != 0) return 3;
    internal::bridgeRegisterCallbacks(writingHost());
    if (!decode(createInstanceCompletedPacket(0, "N")) || hostCalls.size() != 1) return 4;
    return off.printed() == 0 ? 0 : 5;
}

TEST(BridgeLogOffSubprocessTest, AServerThatCannotBeStarted) {
    EXPECT_EQ(runSubprocess("registersInSilence").status, 0u);
}
