// What preflight.h says before the start, in a host of another compiler, and that the start then
// does what was said.
#include <filesystem>
#include <string>

#include "PlainHost.h"
#include "support/ProductVersion.h"

namespace {

class PreflightTest : public PlainHostTest {
 protected:
    PreflightTest() { writeConf("vtr.locale=\"fr-FR\"\n"); }

    // The lines of an operation, after the operations that come before it.
    Lines preflight(const Script& before = {},
                    const Script& arguments = {"Helper", "0", "(null)"}) const {
        Script script = before;
        script.push_back("preflight");
        script.insert(script.end(), arguments.begin(), arguments.end());
        return output(script);
    }

    // How a start in the same state ends: "fatal", or its line.
    std::string start(Script script = {}, const Script& init = {"init", "Helper"}) const {
        script.insert(script.end(), init.begin(), init.end());
        const ChildResult result = play(script);
        if (result.status == kFatalStatus) return "fatal";
        EXPECT_EQ(result.status, 0u) << result.err;
        const Lines lines = linesOf(result.out);
        return lines.empty() ? "" : lines.back();
    }

    void removeFolder(const std::string& name) const {
        std::filesystem::remove_all(std::filesystem::u8path(data / name));
    }
};

}  // namespace

TEST_F(PreflightTest, SaysNothingWhereTheStartWorksAndLeavesNothingBehind) {
    EXPECT_EQ(preflight(), Lines{"preflight 0"});
    EXPECT_EQ(data.list(), (Lines{"Logs", "vantrel.conf"}));
    EXPECT_TRUE(std::filesystem::is_empty(std::filesystem::u8path(data / "Logs")));
    EXPECT_EQ(start(), "init 0");
}

TEST_F(PreflightTest, ALogThatIsThereStaysAsItIs) {
    data.write("Logs\\Player.log", "a line\n");
    EXPECT_EQ(preflight(), Lines{"preflight 0"});
    EXPECT_EQ(data.read("Logs\\Player.log"), "a line\n");
}

TEST_F(PreflightTest, AMissingRegistryValueIsAllThatIsSaid) {
    const Lines expected = {
        "preflight 1",
        "the registry value HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo \"UserDefinedDir\" is "
        "missing: install the product, or set it to a data folder (reg add "
        "HKLM\\SOFTWARE\\Vantrel_nvo /v UserDefinedDir /d C:\\Data)"};
    EXPECT_EQ(preflight({"sandbox"}), expected);
    EXPECT_EQ(preflight({"registry", "UserDefinedDir", ""}), expected);
    EXPECT_EQ(start({"sandbox"}), "fatal");
}

TEST_F(PreflightTest, ADataFolderThatDoesNotExistIsAllThatIsSaid) {
    const Script elsewhere{"registry", "UserDefinedDir", data / "größe"};
    EXPECT_EQ(preflight(elsewhere),
              (Lines{"preflight 1", "the data folder " + (data / "größe") +
                                        " does not exist: create it, or set the registry value "
                                        "\"UserDefinedDir\" to another"}));
    EXPECT_EQ(start(elsewhere), "fatal");
}

TEST_F(PreflightTest, AMissingFolderOfTheLog) {
    removeFolder("Logs");
    EXPECT_EQ(preflight(),
              (Lines{"preflight 1", "the folder " + (data / "Logs") +
                                        " does not exist: create it: the log is written there"}));
    EXPECT_EQ(start(), "fatal");
}

TEST_F(PreflightTest, ALogThatCannotBeOpened) {
    data.makeFolder("Logs\\Player.log");
    EXPECT_EQ(preflight(),
              (Lines{"preflight 1",
                     "the log " + (data / "Logs\\Player.log") +
                         " cannot be opened (Windows error 5): give this user the right to write "
                         "it, or name another log file"}));
    EXPECT_EQ(start(), "fatal");
}

TEST_F(PreflightTest, AMissingConfigurationFile) {
    removeFolder("vantrel.conf");
    EXPECT_EQ(preflight(),
              (Lines{"preflight 1", "the configuration file " + confPath() +
                                        " does not exist: install the product, or copy a "
                                        "vantrel.conf there"}));
    EXPECT_EQ(start(), "init -1");
}

TEST_F(PreflightTest, AConfigurationFileThatCannotBeRead) {
    removeFolder("vantrel.conf");
    data.makeFolder("vantrel.conf");
    EXPECT_EQ(preflight(), (Lines{"preflight 1", "the configuration file " + confPath() +
                                                     " cannot be read: give this user the right to "
                                                     "read it"}));
    EXPECT_EQ(start(), "init -1");
}

TEST_F(PreflightTest, AByteOrderMark) {
    writeConf("\xEF\xBB\xBFvtr.locale=\"fr-FR\"\n");
    EXPECT_EQ(preflight(),
              (Lines{"preflight 1", "the configuration file " + confPath() +
                                        " begins with a byte order mark: save it as UTF-8 without "
                                        "a byte order mark"}));
    EXPECT_EQ(start(), "init -1");
}

TEST_F(PreflightTest, OnlyTheLauncherNeedsTheLibrarysVersion) {
    const Script other{"registry", "Version", "5.1"};
    EXPECT_EQ(preflight(other), Lines{"preflight 0"});
    EXPECT_EQ(preflight(other, {"Launcher", "0", "(null)"}),
              (Lines{"preflight 1", "the product's version is \"5.1\", and the library's is \"" +
                                        std::string(kProductVersion) +
                                        "\": install product and library of the same version"}));
    EXPECT_EQ(start(other, {"init", "Launcher"}), "init -1");
    EXPECT_EQ(preflight({}, {"Launcher", "0", "(null)"}), Lines{"preflight 0"});
}

TEST_F(PreflightTest, EveryProblemIsSaid) {
    removeFolder("Logs");
    removeFolder("vantrel.conf");
    const Lines lines = preflight({"registry", "Version", "5.1"}, {"Launcher", "0", "(null)"});
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "preflight 3");
    EXPECT_EQ(lines[1].rfind("the folder ", 0), 0u);
    EXPECT_EQ(lines[2].rfind("the configuration file ", 0), 0u);
    EXPECT_EQ(lines[3].rfind("the product's version ", 0), 0u);
}

TEST_F(PreflightTest, WithoutTheFileItIsNotLookedAt) {
    removeFolder("vantrel.conf");
    EXPECT_EQ(preflight({}, {"Helper", "1", "(null)"}), Lines{"preflight 0"});
    EXPECT_EQ(start({}, {"initex", "Helper", "1", "(null)"}), "initex 0");
}

TEST_F(PreflightTest, WithALogOfItsOwnTheFolderLogsIsNotLookedAt) {
    removeFolder("Logs");
    EXPECT_EQ(preflight({}, {"Helper", "0", data / "own.log"}), Lines{"preflight 0"});
    EXPECT_EQ(data.list(), Lines{"vantrel.conf"});
    EXPECT_EQ(start({}, {"initex", "Helper", "0", data / "own.log"}), "initex 0");
}

TEST_F(PreflightTest, WithoutTheFileAndWithALogOfItsOwnNoDataFolderIsNeeded) {
    EXPECT_EQ(preflight({"sandbox"}, {"Helper", "1", data / "own.log"}), Lines{"preflight 0"});
    EXPECT_EQ(start({"sandbox"}, {"initex", "Helper", "1", data / "own.log"}), "initex 0");
}

TEST_F(PreflightTest, ALogOfItsOwnInAMissingFolder) {
    const std::string made = data / "a\\b\\own.log";
    EXPECT_EQ(preflight({}, {"Helper", "0", made}), Lines{"preflight 0"});
    EXPECT_EQ(start({}, {"initex", "Helper", "0", made}), "initex 0");

    std::string notMade = data / "c/own.log";
    EXPECT_EQ(preflight({}, {"Helper", "0", notMade})[0], "preflight 1");
    EXPECT_EQ(start({}, {"initex", "Helper", "0", notMade}), "fatal");
}

TEST_F(PreflightTest, LongPathsAreLookedAtToo) {
    std::string folder = data.path();
    while (folder.size() < 300) folder += "\\a folder with a long name";
    std::filesystem::create_directories(std::filesystem::u8path("\\\\?\\" + folder + "\\Logs"));
    writeBytes("\\\\?\\" + folder + "\\vantrel.conf", "vtr.locale=\"fr-FR\"\n");
    const Script there{"registry", "UserDefinedDir", folder};
    EXPECT_EQ(preflight(there), Lines{"preflight 0"});
    EXPECT_EQ(start(there), "init 0");
}

TEST_F(PreflightTest, ATextWithoutRoomIsCutOff) {
    removeFolder("vantrel.conf");
    EXPECT_EQ(output({"shortpreflight", "Helper"}),
              (Lines{"count 1", "shortpreflight 1", "the configuration f"}));
}
