// Problems that preflight.h reports before the start, in a host of another compiler, and how the
// start then ends.
#include <filesystem>
#include <string>

#include "PlainHost.h"

namespace {

namespace fs = std::filesystem;

// How a host starts.
struct Start {
    Script registry;  // operations on its registry, before
    std::string client = "Helper";
    std::string noConf = "0";
    std::string log = "(null)";
};

class PreflightTest : public PlainHostTest {
 protected:
    PreflightTest() { writeConf("vtr.locale=\"fr-FR\"\n"); }

    // Expects a host to find these problems, and its start to end as `end` says: "0", "-1",
    // "fatal".
    void expectProblems(const Lines& problems, const std::string& end,
                        const Start& start = {}) const {
        Script script = start.registry;
        for (const char* operation : {"preflight", "initex"}) {
            script = with(script, {operation, start.client, start.noConf, start.log});
        }
        const ChildResult result = play(script);
        Lines lines = linesOf(result.out);
        ASSERT_GT(lines.size(), problems.size());
        const auto found = lines.begin() + static_cast<std::ptrdiff_t>(problems.size()) + 1;
        EXPECT_EQ(Lines(lines.begin(), found),
                  with({"preflight " + std::to_string(problems.size())}, problems));
        EXPECT_EQ(result.status, end == "fatal" ? kFatalStatus : 0u) << result.err;
        if (end != "fatal") EXPECT_EQ(lines.back(), "initex " + end);
    }

    // What a preflight alone prints.
    Lines preflight(const Start& start = {}) const {
        return output(with(start.registry, {"preflight", start.client, start.noConf, start.log}));
    }

    void removeFolder(const std::string& name) const { fs::remove_all(fs::u8path(data / name)); }
};

}  // namespace

TEST_F(PreflightTest, SaysNothingWhereTheStartWorksAndLeavesNothingBehind) {
    EXPECT_EQ(preflight(), Lines{"preflight 0"});
    EXPECT_EQ(data.list(), (Lines{"Logs", "vantrel.conf"}));
    EXPECT_TRUE(fs::is_empty(fs::u8path(data / "Logs")));
    expectProblems({}, "0");
}

TEST_F(PreflightTest, AnExistingLogIsNotChanged) {
    data.write("Logs\\Player.log", "a line\n");
    EXPECT_EQ(preflight(), Lines{"preflight 0"});
    EXPECT_EQ(data.read("Logs\\Player.log"), "a line\n");
}

TEST_F(PreflightTest, AMissingRegistryValueIsTheOnlyProblem) {
    const Lines problem{
        "the registry value HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo \"UserDefinedDir\" is "
        "missing: install the product, or set it to a data folder (reg add "
        "HKLM\\SOFTWARE\\Vantrel_nvo /v UserDefinedDir /d C:\\Data)"};
    expectProblems(problem, "fatal", {{"sandbox"}});
    expectProblems(problem, "fatal", {{"registry", "UserDefinedDir", ""}});
}

TEST_F(PreflightTest, AMissingDataFolderIsTheOnlyProblem) {
    expectProblems({"the data folder " + (data / "größe") +
                    " does not exist: create it, or set the registry value \"UserDefinedDir\" to "
                    "another"},
                   "fatal", {{"registry", "UserDefinedDir", data / "größe"}});
}

TEST_F(PreflightTest, AMissingFolderOfTheLog) {
    removeFolder("Logs");
    expectProblems(
        {"the folder " + (data / "Logs") + " does not exist: create it: the log is written there"},
        "fatal");
}

TEST_F(PreflightTest, ALogThatCannotBeOpened) {
    data.makeFolder("Logs\\Player.log");
    expectProblems({"the log " + (data / "Logs\\Player.log") +
                    " cannot be opened (Windows error 5): give this user the right to write it, "
                    "or name another log file"},
                   "fatal");
}

TEST_F(PreflightTest, AMissingConfigurationFile) {
    removeFolder("vantrel.conf");
    expectProblems({"the configuration file " + confPath() +
                    " does not exist: install the product, or copy a vantrel.conf there"},
                   "-1");
}

TEST_F(PreflightTest, AConfigurationFileThatCannotBeRead) {
    removeFolder("vantrel.conf");
    data.makeFolder("vantrel.conf");
    expectProblems({"the configuration file " + confPath() +
                    " cannot be read: give this user the right to read it"},
                   "-1");
}

TEST_F(PreflightTest, AByteOrderMark) {
    writeConf("\xEF\xBB\xBFvtr.locale=\"fr-FR\"\n");
    expectProblems({"the configuration file " + confPath() +
                    " begins with a byte order mark: save it as UTF-8 without a byte order mark"},
                   "-1");
}

TEST_F(PreflightTest, OnlyTheLauncherNeedsTheLibrarysVersion) {
    const Script other{"registry", "Version", "5.1"};
    expectProblems({}, "0", {other});
    expectProblems(
        {"the product's version is \"5.1\", and the library's is \"" +
         std::string(kProductVersion) + "\": install product and library of the same version"},
        "-1", {other, "Launcher"});
    expectProblems({}, "0", {{}, "Launcher"});
}

TEST_F(PreflightTest, EveryProblemIsReported) {
    removeFolder("Logs");
    removeFolder("vantrel.conf");
    const Lines lines = preflight({{"registry", "Version", "5.1"}, "Launcher"});
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "preflight 3");
    EXPECT_EQ(lines[1].rfind("the folder ", 0), 0u);
    EXPECT_EQ(lines[2].rfind("the configuration file ", 0), 0u);
    EXPECT_EQ(lines[3].rfind("the product's version ", 0), 0u);
}

TEST_F(PreflightTest, AHostWithoutTheFileNeedsNone) {
    removeFolder("vantrel.conf");
    expectProblems({}, "0", {{}, "Helper", "1"});
}

TEST_F(PreflightTest, AHostWithItsOwnLogNeedsNoFolderLogs) {
    removeFolder("Logs");
    const Start ownLog{{}, "Helper", "0", data / "own.log"};
    EXPECT_EQ(preflight(ownLog), Lines{"preflight 0"});
    EXPECT_EQ(data.list(), Lines{"vantrel.conf"});
    expectProblems({}, "0", ownLog);
}

TEST_F(PreflightTest, AHostWithoutTheFileAndWithItsOwnLogNeedsNoDataFolder) {
    expectProblems({}, "0", {{"sandbox"}, "Helper", "1", data / "own.log"});
}

TEST_F(PreflightTest, AHostsOwnLogInAMissingFolder) {
    expectProblems({}, "0", {{}, "Helper", "0", data / "a\\b\\own.log"});

    const Start notMade{{}, "Helper", "0", data / "c/own.log"};
    EXPECT_EQ(preflight(notMade)[0], "preflight 1");
    EXPECT_EQ(play({"initex", "Helper", "0", notMade.log}).status, kFatalStatus);
}

TEST_F(PreflightTest, LongPathsAreCheckedToo) {
    std::string folder = data.path();
    while (folder.size() < 300) folder += "\\a folder with a long name";
    fs::create_directories(fs::u8path("\\\\?\\" + folder + "\\Logs"));
    writeBytes("\\\\?\\" + folder + "\\vantrel.conf", "vtr.locale=\"fr-FR\"\n");
    expectProblems({}, "0", {{"registry", "UserDefinedDir", folder}});
}

TEST_F(PreflightTest, ATextThatDoesNotFitIsCutOff) {
    removeFolder("vantrel.conf");
    EXPECT_EQ(output("shortpreflight Helper"),
              (Lines{"count 1", "shortpreflight 1", "the configuration f"}));
}
