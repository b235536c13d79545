// Commands that wait for the result of the program that they start, and unknown instances.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "ProgramFixture.h"
#include "support/WindowsForTests.h"

namespace {

using Json = nlohmann::ordered_json;

class BridgectlWaitTest : public BridgectlFixture {
 protected:
    BridgectlWaitTest() {
        data.write("vantrel.conf", "vtr.instance.Nougat64.dpi=\"240\"\n");
        setScript("");
    }

    void setScript(const std::string& script) {
        useStandins("LogCollector", "1");
        options.environment.emplace_back("QX_STANDIN_SCRIPT", data.write("script", script));
    }

    ChildResult wait(const Arguments& arguments) const {
        return run(joined({"--client", "LogCollector"}, arguments));
    }

    void expectEvent(const Arguments& arguments, const std::string& event) const {
        const ChildResult result = wait(arguments);
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(withoutTimes(result.out), event + "\n");
    }
};

}  // namespace

TEST_F(BridgectlWaitTest, EachCommandWaitsForItsEvent) {
    expectEvent({"launch", "Nougat64", "com.a", "--wait"},
                "app-displayed instance=\"Nougat64\" package=\"com.a\"");
    expectEvent({"install-apk", "Nougat64", "C:\\d\\com.b.apk", "--wait", "50"},
                "apk-install-completed instance=\"Nougat64\" status=0 "
                "apkFilePath=\"C:\\\\d\\\\com.b.apk\"");
    expectEvent({"uninstall", "--wait", "50", "Nougat64", "com.b"},
                "app-uninstalled instance=\"Nougat64\" package=\"com.b\"");
    expectEvent({"install-image", "Nougat32", "--wait=50"},
                "image-install-progress imageName=\"Nougat32\" status=2 progress=100.0");
    expectEvent({"create-instance", "Nougat64", "4", "4096", "aga", "dx", "s21u", "--wait"},
                "create-instance-completed status=0 instance=\"Nougat64_1\"");
}

TEST_F(BridgectlWaitTest, AFailureIsAnExitCode) {
    setScript(
        "on installApk event apk-install-completed Nougat64 5 a.apk\n"
        "on createFreshInstance event create-instance-completed -1 \"\"\n");
    const ChildResult result = wait({"install-apk", "Nougat64", "C:\\d\\a.apk", "--wait"});
    EXPECT_EQ(result.status, 12u);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "bridgectl: the work failed: apk-install-completed instance=\"Nougat64\" status=5 "
              "apkFilePath=\"a.apk\"\n");
    EXPECT_EQ(
        wait({"create-instance", "Nougat64", "4", "4096", "aga", "dx", "s21u", "--wait"}).status,
        12u);
}

TEST_F(BridgectlWaitTest, TheJsonIsTheEventOrAnError) {
    const Json event = Json::parse(wait({"launch", "Nougat64", "com.a", "--wait", "--json"}).out);
    EXPECT_EQ(event["event"], "app-displayed");
    EXPECT_EQ(event["package"], "com.a");
    setScript("on launchApp event app-displayed Nougat64 com.other\n");
    const ChildResult late = wait({"--json", "launch", "Nougat64", "com.a", "--wait", "1"});
    EXPECT_EQ(late.status, 9u);
    EXPECT_EQ(
        late.out,
        R"({"code":9,"name":"Timeout","text":"started, but no event reported the result in time",)"
        R"("hint":null})"
        "\n");
}

TEST_F(BridgectlWaitTest, AnotherFrontEndOfTheClientIsAnErrorAndNothingIsStarted) {
    ChildProcess listener = listen({"events"});
    const ChildResult result = wait({"launch", "Nougat64", "com.a", "--wait"});
    EXPECT_EQ(result.status, 10u);
    EXPECT_FALSE(data.has("standins.txt"));
}

TEST_F(BridgectlWaitTest, TheTimeIsANumber) {
    for (const std::string wrong : {"0", "soon"}) {
        expectMisuse({"launch", "Nougat64", "com.a", "--wait", wrong},
                     "--wait: must be 1 or more, not \"" + wrong + "\"", "launch");
    }
    expectMisuse({"launch", "Nougat64", "com.a", "--wait", ""}, "--wait: the value is empty",
                 "launch");
    EXPECT_NE(run({"launch-url", "Nougat64", "u", "--wait"}).status, 0u) << "no event reports it";
}

TEST_F(BridgectlWaitTest, AnUnknownInstanceStartsNothing) {
    for (const Arguments& arguments :
         {Arguments{"launch", "Nobody", "com.a"}, Arguments{"launch-url", "Nobody", "u"},
          Arguments{"app-store", "Nobody", "play", "com.a"},
          Arguments{"install-apk", "Nobody", "a.apk"}, Arguments{"uninstall", "Nobody", "com.a"},
          Arguments{"shutdown", "Nobody"}}) {
        expectFailure(arguments, 3, "no such instance: Nobody");
    }
    expectFailure({"launch", "Nuogat64", "com.a"}, 3,
                  "no such instance: Nuogat64\nbridgectl: did you mean Nougat64?");
    EXPECT_FALSE(data.has("standins.txt"));
}
