// Clients whose initialisation fails. The tests replace it with a function that fails.
#include "bridge/BridgeShutdown.h"

#include "ReplacedIpcCalls.h"
#include "conf/Conf.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

namespace {

int failInit(IpcClient&, const std::string&) { return -7; }

// Fails for the manager only.
int failForManager(IpcClient& client, const std::string& serverName) {
    return serverName == "vtr_mim_nvo" ? -8 : ipcClientInit(client, serverName);
}

class BridgeShutdownTest : public ::testing::Test {
 protected:
    BridgeShutdownTest() {
        // Other tests use the same store, so load a file without instances.
        EXPECT_EQ(confLibInit(confStore(), folder.write("vantrel.conf", ""), false), 0);
        confAddInstance(confStore(), "Nougat64_2");
        confAddInstance(confStore(), "Nougat64_10");
        log.clear();
    }

    TempFolder folder;
    LogCapture log;
};

}  // namespace

TEST_F(BridgeShutdownTest, TheErrorOfOnePlayersClientIsReturned) {
    const ReplacedIpcCalls failing(failInit);
    EXPECT_EQ(internal::bridgePlrShutdown("Nougat64", true), -7);
    EXPECT_EQ(log.texts(XLOG_ERROR),
              Lines{"E BRIDGE IPC client for vtr_plr_Nougat64_nvo init failed: err -7"});
}

TEST_F(BridgeShutdownTest, EveryFailureIsLoggedAndTheNextIsAsked) {
    const ReplacedIpcCalls failing(failInit);
    internal::bridgeShutdown();
    EXPECT_EQ(log.texts(XLOG_ERROR),
              (Lines{"E BRIDGE MIM IPC client init failed: err -7",
                     "E BRIDGE IPC client for vtr_plr_Nougat64_10_nvo init failed: err -7",
                     "E BRIDGE IPC client for vtr_plr_Nougat64_2_nvo init failed: err -7"}));
}

TEST_F(BridgeShutdownTest, WithoutTheManagersClientThePlayersAreStillAsked) {
    const ReplacedIpcCalls failing(failForManager);
    internal::bridgeShutdown();
    EXPECT_EQ(log.texts(XLOG_ERROR),
              (Lines{"E BRIDGE MIM IPC client init failed: err -8",
                     logged::requestNotSent("PLR", "plrShutdownRpc", "2000"),
                     logged::requestNotSent("PLR", "plrShutdownRpc", "2000")}));
}

TEST_F(BridgeShutdownTest, TheManagerIsAskedFirstAndItsClientGoesLast) {
    internal::bridgeShutdown();
    Lines steps;
    for (const std::string& line : log.texts(XLOG_DEBUG)) {
        for (const char* step : {"ipcClientInit", "~IpcClient", "Rpc("}) {
            if (line.find(step) != std::string::npos &&
                line.find("returning") == std::string::npos) {
                steps.push_back(line);
            }
        }
    }
    EXPECT_EQ(steps,
              (Lines{logged::clientStep("ipcClientInit", "vtr_mim_nvo"), "D MIM mimShutdownRpc()\n",
                     logged::clientStep("ipcClientInit", "vtr_plr_Nougat64_10_nvo"),
                     "D PLR plrShutdownRpc(0)\n",
                     logged::clientStep("~IpcClient", "vtr_plr_Nougat64_10_nvo"),
                     logged::clientStep("ipcClientInit", "vtr_plr_Nougat64_2_nvo"),
                     "D PLR plrShutdownRpc(0)\n",
                     logged::clientStep("~IpcClient", "vtr_plr_Nougat64_2_nvo"),
                     logged::clientStep("~IpcClient", "vtr_mim_nvo")}));
}

TEST_F(BridgeShutdownTest, LinesCarryTheExportsNames) {
    const ReplacedIpcCalls failing(failInit);
    static_cast<void>(internal::bridgePlrShutdown("X", false));
    internal::bridgeShutdown();
    Lines functions;
    for (const LogCapture::Line& line : log.lines()) {
        if (line.tag == XlogTag::BRIDGE) functions.push_back(line.function);
    }
    EXPECT_EQ(functions,
              (Lines{"bridgePlrShutdown", "bridgeShutdown", "bridgeShutdown", "bridgeShutdown"}));
}
