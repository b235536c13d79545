#include "PlainHost.h"

namespace {

class LaunchTest : public PlainHostTest {
 protected:
    // Runs a script in a host whose install folder holds no program, and gives the command line
    // that the failed start logged.
    std::string commandLine(const Script& operation) const {
        Script script{"registry", "InstallDir", "C:\\No Such\\", "init", "Helper"};
        script.insert(script.end(), operation.begin(), operation.end());
        const Lines lines = output(script);
        EXPECT_EQ(lines.back(), operation[0] + " 2");
        const std::string start =
            "E XSTR Helper_bridge xprocCreate_basic: CreateProcessW failed: cmdline ";
        const std::string line = log().back();
        EXPECT_EQ(line.rfind(start, 0), 0u) << line;
        return line.substr(start.size(), line.rfind(" GetLastError() ") - start.size());
    }

    void SetUp() override { writeConf(""); }
};

constexpr const char* kPlayer = R"("C:\\No Such\\QX-Player.exe")";
constexpr const char* kManager = R"("C:\\No Such\\QX-MultiInstanceManager.exe")";

}  // namespace

TEST_F(LaunchTest, EachFunctionHasItsCommandLine) {
    const std::string player = std::string(kPlayer) + R"( "--instance" "Nougat64" "--cmd" )";
    EXPECT_EQ(commandLine({"launchapp", "Nougat64", "com.example.app"}),
              player + R"("launchApp" "--package" "com.example.app")");
    EXPECT_EQ(commandLine({"appstore", "Nougat64", "play", "com.example.app"}),
              player + R"("installApp" "--package" "com.example.app" "--store" "play")");
    EXPECT_EQ(commandLine({"url", "Nougat64", "https://example.com/?a=b&c"}),
              player + R"("launchUrl" "--url" "https://example.com/?a=b&c")");
    EXPECT_EQ(commandLine({"apk", "Nougat64", "C:\\My Apps\\日本.apk"}),
              player + R"("installApk" "--filepath" "C:\\My Apps\\日本.apk")");
    EXPECT_EQ(commandLine({"uninstall", "Nougat64", "com.example.app"}),
              player + R"("uninstallApp" "--package" "com.example.app")");
    const std::string manager = std::string(kManager) + R"( "--hidden" "--cmd" )";
    EXPECT_EQ(commandLine({"image", "Nougat32"}),
              manager + R"("installImage" "--imageName" "Nougat32")");
    EXPECT_EQ(commandLine({"create", "Nougat64", "", "4096", "aga", "dx", "s21 \"u\""}),
              manager + R"("createFreshInstance" "--imageName" "Nougat64" "--cpu" "" "--ram" )"
                        R"("4096" "--graphicEngine" "aga" "--graphicRenderer" "dx" )"
                        R"("--deviceProfile" "s21 \"u\"")");
}

TEST_F(LaunchTest, NullTextsAreRefused) {
    EXPECT_EQ(output({"init", "Helper", "launchapp", "(null)", "x", "appstore", "a", "(null)", "c",
                      "image", "(null)", "create", "a", "b", "c", "d", "e", "(null)"}),
              (Lines{"init 0", "launchapp 22", "appstore 22", "image 22", "create 22"}));
}

TEST_F(LaunchTest, AMissingInstallFolderEndsTheHost) {
    EXPECT_EQ(play({"init", "Helper", "launchapp", "a", "b"}).status, kFatalStatus);
    EXPECT_EQ(log()[3], "E UTL Helper_bridge utlGetInstallDir: Failed to get install dir properly");
}

TEST_F(LaunchTest, NullTextsAreRefusedByEveryOtherFunctionToo) {
    for (const Script& call :
         {Script{"url", "a", "(null)"}, Script{"apk", "(null)", "b"},
          Script{"uninstall", "a", "(null)"}, Script{"plrshutdown", "(null)", "1"}}) {
        Script script{"init", "Helper"};
        script.insert(script.end(), call.begin(), call.end());
        EXPECT_EQ(output(script), (Lines{"init 0", call[0] + " 22"}));
    }
}
