#include "PlainHost.h"
#include "ProgramFunctions.h"
#include "support/LogLines.h"
#include "support/WaitUntil.h"

namespace {

class LaunchTest : public PlainHostTest {
 protected:
    // Expects this command line in the log of a start, which fails because no program is installed.
    void expectCommandLine(const Script& operation, const std::string& commandLine) const {
        const Lines lines =
            output(with({"registry", "InstallDir", "C:\\No Such\\", "init", "Helper"}, operation));
        EXPECT_EQ(lines.back(), operation[0] + " 2");
        const std::string line = log().back();
        EXPECT_EQ(line.rfind(logged::byHelper(logged::startFailed(commandLine)), 0), 0u) << line;
    }

    void SetUp() override { writeConf(""); }
};

constexpr const char* kPlayer = R"("C:\\No Such\\QX-Player.exe")";
constexpr const char* kManager = R"("C:\\No Such\\QX-MultiInstanceManager.exe")";

}  // namespace

TEST_F(LaunchTest, EachFunctionHasItsCommandLine) {
    const std::string player = std::string(kPlayer) + R"( "--instance" "Nougat64" "--cmd" )";
    expectCommandLine({"bridgeLaunchApp", "Nougat64", "com.example.app"},
                      player + R"("launchApp" "--package" "com.example.app")");
    expectCommandLine({"bridgeLaunchAppStore", "Nougat64", "play", "com.example.app"},
                      player + R"("installApp" "--package" "com.example.app" "--store" "play")");
    expectCommandLine({"bridgeLaunchUrl", "Nougat64", "https://example.com/?a=b&c"},
                      player + R"("launchUrl" "--url" "https://example.com/?a=b&c")");
    expectCommandLine({"bridgeInstallApk", "Nougat64", "C:\\My Apps\\日本.apk"},
                      player + R"("installApk" "--filepath" "C:\\My Apps\\日本.apk")");
    expectCommandLine({"bridgeUninstallApp", "Nougat64", "com.example.app"},
                      player + R"("uninstallApp" "--package" "com.example.app")");
    const std::string manager = std::string(kManager) + R"( "--hidden" "--cmd" )";
    expectCommandLine({"bridgeInstallImage", "Nougat32"},
                      manager + R"("installImage" "--imageName" "Nougat32")");
    expectCommandLine(
        {"bridgeCreateFreshInstance", "Nougat64", "", "4096", "aga", "dx", "s21 \"u\""},
        manager + R"("createFreshInstance" "--imageName" "Nougat64" "--cpu" "" "--ram" )"
                  R"("4096" "--graphicEngine" "aga" "--graphicRenderer" "dx" )"
                  R"("--deviceProfile" "s21 \"u\"")");
}

TEST_F(LaunchTest, ANullTextAtAnyPositionIsRefusedWithALine) {
    const struct {
        std::string operation;
        std::string function;
        std::size_t texts;
        Script rest;
    } functions[] = {
#define ROW(function, count, arguments) {#function, #function, count, {}},
        PROGRAM_FUNCTIONS(ROW)
#undef ROW
            {"plrshutdown", "bridgePlrShutdown", 1, {"1"}}};
    for (const auto& function : functions) {
        Script script;
        Lines answers;
        Lines refusals;
        for (std::size_t place = 0; place < function.texts; ++place) {
            Script texts(function.texts, "x");
            texts[place] = "(null)";
            script = with(with(with(script, {function.operation}), texts), function.rest);
            answers.push_back(function.operation + " 22");
            refusals.push_back(logged::byHelper(logged::nullArgument(function.function)));
        }
        EXPECT_EQ(asHelper(script), answers);
        EXPECT_EQ(logAfterInit(), refusals);
        removeFile(data / "Logs\\Player.log");
    }
}

// Starts the product's stand-ins, which end after a second without a request.
TEST_F(LaunchTest, AStartThatSucceedsLeavesNoLine) {
    const std::string player = "Nougat64_" + std::to_string(ownProcessId());
    ChildOptions options;
    options.environment = {{"QX_STANDIN_OUTPUT", data / "standins.txt"},
                           {"QX_STANDIN_SECONDS", "1"},
                           {"QX_STANDIN_CLIENTS", "none"}};
    Script script{"registry", "InstallDir", standinProgram(""), "init", "Helper"};
    Lines answers{"init 0"};
    for (const Script& start :
         {Script{"bridgeLaunchApp", player, "p"}, Script{"bridgeLaunchAppStore", player, "s", "p"},
          Script{"bridgeLaunchUrl", player, "u"}, Script{"bridgeInstallApk", player, "f"},
          Script{"bridgeUninstallApp", player, "p"}, Script{"bridgeInstallImage", "Nougat32"},
          Script{"bridgeCreateFreshInstance", "Nougat64", "1", "2", "g", "r", "d"}}) {
        script = with(script, start);
        answers.push_back(start[0] + " 0");
    }
    const ChildResult result = play(script, options);
    EXPECT_EQ(result.status, 0u) << result.err;
    EXPECT_EQ(linesOf(result.out), answers);
    EXPECT_EQ(logAfterInit(), Lines{});
    const auto haveEnded = [this] {
        const std::string text = data.has("standins.txt") ? data.read("standins.txt") : "";
        return text.find("ended: vtr_plr_") != std::string::npos &&
               text.find("ended: vtr_mim_nvo") != std::string::npos;
    };
    EXPECT_TRUE(waitUntil(haveEnded)) << "the next tests need their names and files";
}

TEST_F(LaunchTest, AMissingInstallFolderEndsTheHost) {
    EXPECT_EQ(play(script("init Helper bridgeLaunchApp a b")).status, kFatalStatus);
    EXPECT_EQ(logAfterInit()[0], logged::byHelper(logged::installFolderUnknown()));
}
