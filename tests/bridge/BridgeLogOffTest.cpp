// What is refused, and what is passed on, with every level off: the same results, and not a line.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HostCalls.h"
#include "appc/AppcStore.h"
#include "bridge/BridgeApps.h"
#include "bridge/BridgeDec.h"
#include "bridge/BridgeEvents.h"
#include "bridge/BridgeFence.h"
#include "bridge/BridgeInit.h"
#include "bridge/BridgeShutdown.h"
#include "support/EventPackets.h"
#include "support/LogCapture.h"
#include "support/RegistrySandbox.h"
#include "support/Scene.h"
#include "support/TempFolder.h"

namespace {

using Lines = std::vector<std::string>;

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
    EXPECT_TRUE(decode(appInstalledPacket("N", "p", "a", "l", 5, "2", "i", 1)));
    EXPECT_TRUE(decode(appUninstalledPacket("N", "p")));
    EXPECT_TRUE(decode(apkInstallCompletedPacket("N", -1, "f")));
    EXPECT_TRUE(decode(installImageProgressPacket("N", 1, 0.5)));
    EXPECT_TRUE(decode(createInstanceCompletedPacket(0, "N")));
    EXPECT_TRUE(decode(instanceListUpdatedPacket()));
    EXPECT_TRUE(decode(instanceConfigurationChangedPacket("N")));
    EXPECT_TRUE(decode(appDisplayedPacket("N", "p")));
    EXPECT_TRUE(decode(accountListUpdatedPacket("N", "e", 1)));
    EXPECT_EQ(hostCalls.size(), 9u);
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
    EXPECT_EQ(bridge::bridgeGetInstalledApps(store, "a\\b"), std::nullopt);
}

TEST_F(BridgeLogOffTest, ClientsThatCannotBePrepared) {
    EXPECT_EQ(bridge::bridgePlrShutdown("Nougat64", true, failInit), -7);
    bridge::bridgeShutdown(failInit);
}

// The initialisation puts the library's own logger in place: what comes before it is silent.
SCENE(initialisesInSilence) {
    RegistrySandbox registry;
    const TempFolder folder;
    const LogOff off;
    if (bridge::bridgeApiInitEx("Nobody", true, 0, "NUL") != XERR_INVAL) return 1;
    if (bridge::bridgeApiInitEx("Launcher", true, 0, "NUL") != -1) return 2;
    if (off.refused() != 2 || off.printed() != 0) return 3;
    bridge::bridgeRegisterCallbacks(writingHost(), failToListen);
    if (off.refused() != 3) return 4;
    return 0;
}

TEST(BridgeLogOffSceneTest, ClientsThatAreRefused) {
    EXPECT_EQ(runScene("initialisesInSilence").status, 0u);
}

SCENE(registersInSilence) {
    RegistrySandbox registry;
    if (bridge::bridgeApiInitEx("Uninstaller", true, 0, "NUL") != 0) return 1;
    const LogOff off;
    bridge::bridgeRegisterCallbacks(writingHost(), failToListen);
    bridge::bridgeRegisterCallbacks({}, failToListen);
    if (!decode(createInstanceCompletedPacket(0, "N")) || !hostCalls.empty()) return 2;
    if (bridge::bridgeApiFini() != 0) return 3;
    bridge::bridgeRegisterCallbacks(writingHost(), failToListen);
    if (!decode(createInstanceCompletedPacket(0, "N")) || hostCalls.size() != 1) return 4;
    return off.printed() == 0 ? 0 : 5;
}

TEST(BridgeLogOffSceneTest, AServerThatCannotBeStarted) {
    EXPECT_EQ(runScene("registersInSilence").status, 0u);
}
