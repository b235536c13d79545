// What is refused, and what is passed on, with every level off: the same results, and not a line.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "HostCalls.h"
#include "ReplacedIpcCalls.h"
#include "appc/AppcStore.h"
#include "bridge/BridgeApps.h"
#include "bridge/BridgeDec.h"
#include "bridge/BridgeEntry.h"
#include "bridge/BridgeEvents.h"
#include "bridge/BridgeInit.h"
#include "bridge/BridgeShutdown.h"
#include "support/EventPackets.h"
#include "support/LogCapture.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"

namespace {

bool decode(const std::string& packet) {
    return bridgeDecode(nullptr, reinterpret_cast<const std::uint8_t*>(packet.data()),
                        static_cast<std::int32_t>(packet.size()), nullptr, 0);
}

int failInit(IpcClient&, const std::string&) { return -7; }

int failToListen(IpcServerThread**, const std::string&, IpcDecode) { return -9; }

class BridgeLogOffTest : public ::testing::Test {
 protected:
    BridgeLogOffTest() { hostCalls.clear(); }
    ~BridgeLogOffTest() override {
        EXPECT_GT(off.refused(), 0);
        EXPECT_EQ(off.printed(), 0);
    }

    LogOff off;
};

}  // namespace

TEST_F(BridgeLogOffTest, EventsReachTheHost) {
    bridgeSetCallbacks(writingHost());
    for (const KnownEvent& event : knownEvents()) {
        EXPECT_TRUE(decode(eventPacket(event, exampleOf(event)))) << event.name;
    }
    EXPECT_EQ(hostCalls.size(), knownEvents().size());
    bridgeSetCallbacks({});
}

TEST_F(BridgeLogOffTest, PacketsThatAreNone) {
    EXPECT_FALSE(decode("seven b"));
    EXPECT_FALSE(decode(packetOf(2999, "")));
    EXPECT_FALSE(decode(packetOf(3001, "")));
    EXPECT_EQ(hostCalls, Lines{});
}

TEST_F(BridgeLogOffTest, NullTexts) {
    const auto status = [](const char* text) {
        return bridgeStatus("f", {"a", text}, [] { return XErr{0}; });
    };
    const auto value = [](const char* text) {
        return bridgeValue<int>("f", {text}, [] { return 5; });
    };
    EXPECT_EQ(status("b"), 0);
    EXPECT_EQ(status(nullptr), XERR_INVAL);
    EXPECT_EQ(value("b"), 5);
    EXPECT_EQ(value(nullptr), 0);
}

TEST_F(BridgeLogOffTest, AListingWithoutALock) {
    const TempFolder folder;
    AppcStore store(appcDiskFiles(), folder.path() + "\\", folder.path() + "\\Shared\\");
    EXPECT_EQ(internal::bridgeGetInstalledApps(store, "a\\b"), std::nullopt);
}

TEST_F(BridgeLogOffTest, ClientsThatCannotBePrepared) {
    const ReplacedIpcCalls failing(failInit);
    EXPECT_EQ(internal::bridgePlrShutdown("Nougat64", true), -7);
    internal::bridgeShutdown();
}

// The initialisation puts the library's own logger in place: what comes before it is silent.
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
