// The request with a reply, sent to a stand-in player that misbehaves.
#include "plr/client/PlrEnc.h"
#include "support/ChildProcess.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WaitUntil.h"
#include "support/WindowsForTests.h"

namespace {

class StandinReplyTest : public ::testing::Test {
 protected:
    // Asks a stand-in with this script, and returns its reply.
    std::uint64_t ask(const std::string& script) {
        static int count = 0;
        const std::string instance =
            "Reply" + std::to_string(::GetCurrentProcessId()) + "_" + std::to_string(++count);
        ChildOptions options;
        options.environment = {{"QX_STANDIN_OUTPUT", folder / "out.txt"},
                               {"QX_STANDIN_SCRIPT", folder.write("script", script)},
                               {"QX_STANDIN_SECONDS", "10"}};
        ChildProcess player(standinProgram("QX-Player.exe"), {"--instance", instance}, options);
        waitUntil([this] {
            return folder.has("out.txt") && output().find("serving") != std::string::npos;
        });
        IpcClient client;
        ipcClientInit(client, "vtr_plr_" + instance + "_nvo");
        client.waitMs = 2000;
        const std::uint64_t answer = plrBringToFrontRpc(client);
        player.kill();
        return answer;
    }

    std::string output() const { return folder.read("out.txt"); }

    TempFolder folder;
    LogCapture log;
};

}  // namespace

TEST_F(StandinReplyTest, AnswersOneWithoutAScript) {
    EXPECT_EQ(ask(""), 1u);
    EXPECT_NE(output().find("\nplrBringToFrontRpc()\n"), std::string::npos);
}

TEST_F(StandinReplyTest, AnswersWhatTheScriptSays) {
    EXPECT_EQ(ask("reply 2A00000000000001"), 0x010000000000002Au);
}

TEST_F(StandinReplyTest, ASplitAndLateReplyIsCollected) {
    EXPECT_EQ(ask("delay 200\nsplit 3\nreply 0102030405060708"), 0x0807060504030201u);
}

TEST_F(StandinReplyTest, GarbageAfterTheReplyIsIgnored) { EXPECT_EQ(ask("garbage 20"), 1u); }

TEST_F(StandinReplyTest, AShortReplyAnswersZero) { EXPECT_EQ(ask("short 3"), 0u); }

TEST_F(StandinReplyTest, AConnectionThatClosesEarlyAnswersZero) {
    EXPECT_EQ(ask("close-early"), 0u);
}

TEST_F(StandinReplyTest, AScriptThatIsNotUnderstoodEndsTheStandin) {
    ChildOptions options;
    options.environment = {{"QX_STANDIN_OUTPUT", folder / "out.txt"},
                           {"QX_STANDIN_SCRIPT", folder.write("script", "dance")}};
    const ChildResult result =
        runChild(standinProgram("QX-Player.exe"), {"--instance", "x"}, options);
    EXPECT_EQ(result.status, 2u);
    EXPECT_EQ(output(), "error: script not understood: dance\n");
}
