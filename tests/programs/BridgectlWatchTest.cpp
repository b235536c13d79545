// `bridgectl watch` into a pipe: a line for each change.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "ProgramFixture.h"
#include "support/WindowsForTests.h"

namespace {

using Json = nlohmann::ordered_json;

class BridgectlWatchTest : public BridgectlFixture {
 protected:
    BridgectlWatchTest() {
        useStandins("none", "60");
        data.write("vantrel.conf", kConf);
    }

    ChildProcess watch(const Arguments& more = {}) const {
        return ChildProcess(program(), joined({"--client", "LogCollector", "watch"}, more),
                            options);
    }

    static std::string nextLine(ChildProcess& watcher) { return withoutTimes(watcher.readLine()); }

    // Replaces the file as a commit does, so that no reader sees half of it.
    void addInstance() const {
        const std::string file =
            data.write("new.conf", kConf + "vtr.instance.Nougat32.ram=\"1\"\n");
        EXPECT_TRUE(::MoveFileExW(wideForTests(file).c_str(),
                                  wideForTests(data / "vantrel.conf").c_str(),
                                  MOVEFILE_REPLACE_EXISTING));
    }

    const std::string kConf = "vtr.locale=\"fr\"\nvtr.instance.Nougat64.ram=\"1\"\n";
};

}  // namespace

TEST_F(BridgectlWatchTest, EachChangeHasALine) {
    ChildProcess watcher = watch();
    EXPECT_EQ(nextLine(watcher), "instance-added instance=\"Nougat64\"");
    EXPECT_EQ(output({"launch", "Nougat64", "com.a"}), "started\n");
    EXPECT_EQ(nextLine(watcher), "player-started instance=\"Nougat64\"");
    EXPECT_EQ(output({"install-image", "Nougat32"}), "started\n");
    EXPECT_EQ(nextLine(watcher), "manager-started");
    ChildOptions toWatcher;
    toWatcher.environment = {{"QX_STANDIN_OUTPUT", data / "sent.txt"},
                             {"QX_STANDIN_CLIENTS", "LogCollector"}};
    EXPECT_EQ(
        runChild(standinProgram("QX-Player.exe"), {"--event", "app-displayed", "N", "p"}, toWatcher)
            .status,
        0u);
    EXPECT_EQ(nextLine(watcher), "app-displayed instance=\"N\" package=\"p\"");
    output({"conf", "set", "vtr.locale", "de"});
    EXPECT_EQ(nextLine(watcher), "value-changed key=\"vtr.locale\" before=\"fr\" after=\"de\"");
    output({"shutdown", "Nougat64"});
    EXPECT_EQ(nextLine(watcher), "player-ended instance=\"Nougat64\"");
    output({"shutdown"});
    EXPECT_EQ(nextLine(watcher), "manager-ended");
    addInstance();
    EXPECT_EQ(nextLine(watcher), "instance-added instance=\"Nougat32\"");
}

TEST_F(BridgectlWatchTest, TheJsonIsAnObjectPerLine) {
    ChildProcess watcher = watch({"--json", "--timeout", "1"});
    const ChildResult result = watcher.finish();
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.err, "");
    const Json change = Json::parse(result.out, nullptr, false);
    EXPECT_EQ(change["change"], "instance-added") << result.out;
    EXPECT_EQ(change["instance"], "Nougat64");
}

TEST_F(BridgectlWatchTest, ABrokenOutputEndsIt) {
    ChildProcess watcher = watch();
    EXPECT_EQ(nextLine(watcher), "instance-added instance=\"Nougat64\"");
    watcher.closeOutput();
    addInstance();
    const ChildResult result = watcher.finish();
    EXPECT_EQ(result.status, 11u);
    EXPECT_EQ(result.err, "bridgectl: standard output cannot be written\n");
}

TEST_F(BridgectlWatchTest, AnotherFrontEndOfTheClientIsAnError) {
    ChildProcess first = watch();
    EXPECT_EQ(nextLine(first), "instance-added instance=\"Nougat64\"");
    EXPECT_EQ(run({"--client", "LogCollector", "watch"}).status, 10u);
}
