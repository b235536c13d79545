// What the program says about a command line that cannot be meant, and what it proposes.
#include <gtest/gtest.h>

#include <string>

#include "ProgramFixture.h"

namespace {

class BridgectlUsageTest : public BridgectlFixture {
 protected:
    BridgectlUsageTest() {
        data.write("vantrel.conf",
                   "vtr.locale=\"fr-FR\"\nvtr.instance.Nougat64.ram=\"4096\"\n"
                   "vtr.instance.Nougat64_1.ram=\"2048\"\n");
    }

    std::string file() const { return data.read("vantrel.conf"); }
};

}  // namespace

TEST_F(BridgectlUsageTest, AnEmptyFileNameIsMisuseAndLeavesTheConfigurationAlone) {
    const std::string before = file();
    for (const Arguments& to : {Arguments{"--to", ""}, Arguments{"--to="}}) {
        Arguments line{"conf", "set", "vtr.locale", "de"};
        line.insert(line.end(), to.begin(), to.end());
        expectFailure(line, 2, "--to: the value is empty\nbridgectl: see bridgectl --help");
    }
    EXPECT_EQ(file(), before);
}

TEST_F(BridgectlUsageTest, AnEmptyLogFileIsMisuse) {
    const std::string error = "--log-file: the value is empty\nbridgectl: see bridgectl --help";
    expectFailure({"--log-file", "", "version"}, 2, error);
    expectFailure({"--log-file=", "version"}, 2, error);
    EXPECT_FALSE(data.has("Logs\\Player.log"));
}

TEST_F(BridgectlUsageTest, AnEmptyClientIsMisuse) {
    expectFailure({"--client", "", "version"}, 2,
                  "--client: the value is empty\nbridgectl: see bridgectl --help");
}

TEST_F(BridgectlUsageTest, TheKeysOfAnEmptyInstanceNameAreNotAllKeys) {
    expectFailure({"conf", "list", "--instance", ""}, 2,
                  "--instance: the value is empty\nbridgectl: see bridgectl --help");
}

TEST_F(BridgectlUsageTest, AValueThatEndsWithAnEqualsSignIsAValue) {
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "a="}), "vtr.locale: fr-FR -> a=\n");
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "--", "--to="}), "vtr.locale: a= -> --to=\n");
}
