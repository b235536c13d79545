// bridgeadm with a real registry, data folder and log.
#include <algorithm>
#include <cstddef>
#include <string>

#include "BridgeadmFixture.h"
#include "support/LogLines.h"
#include "support/ProductVersion.h"
#include "support/WindowsForTests.h"

namespace {

std::string jsonOfLines(const std::string& lines) {
    std::string json;
    for (std::size_t start = 0; start < lines.size();) {
        const std::size_t end = lines.find('\n', start);
        const std::size_t equals = lines.find('=', start);
        json += json.empty() ? "[\n" : ",\n";
        json += "    {\n        \"key\": \"" + lines.substr(start, equals - start) +
                "\",\n        \"value\": \"" + lines.substr(equals + 1, end - equals - 1) +
                "\"\n    }";
        start = end + 1;
    }
    return json + "\n]\n";
}

}  // namespace

TEST_F(BridgeadmTest, CopiesAnInstanceIntoTheFile) {
    EXPECT_EQ(output({"copy-instance", "Nougat64", "Nougat64_1"}),
              "copied the settings of Nougat64 to Nougat64_1\n");
    addInstanceCopy(entries, "Nougat64", "Nougat64_1");
    EXPECT_EQ(file(), fileText(entries));
    EXPECT_EQ(data.list(), (Arguments{"Logs", "vantrel.conf"}));
}

TEST_F(BridgeadmTest, OtherProgramsReadACopy) {
    output({"copy-instance", "Nougat64", "Nougat64_日本"});
    const ChildResult result = runChild(productFile("bridgectl.exe"),
                                        {"conf", "get", "vtr.instance.Nougat64_日本.display_name"});
    EXPECT_EQ(result.status, 0u) << result.err;
    EXPECT_EQ(result.out, "Jeux 日本\n");
}

TEST_F(BridgeadmTest, AnExistingInstanceIsOverwrittenOnlyOnRequest) {
    expectFailure({"copy-instance", "Nougat64", "Nougat32"}, 2,
                  "instance Nougat32 exists: add --overwrite");
    EXPECT_EQ(output({"copy-instance", "Nougat64", "Nougat32", "--overwrite"}),
              "copied the settings of Nougat64 to Nougat32\n");
    Entries expected = globalDefaults();
    for (const auto& [key, value] : entries) {
        if (key.find("Nougat32") == std::string::npos) expected[key] = value;
    }
    addInstanceCopy(expected, "Nougat64", "Nougat32");
    EXPECT_EQ(file(), fileText(expected));
}

TEST_F(BridgeadmTest, OverwriteAlsoAllowsANewInstance) {
    output({"copy-instance", "--overwrite", "Nougat64", "Nougat64_1"});
    addInstanceCopy(entries, "Nougat64", "Nougat64_1");
    EXPECT_EQ(file(), fileText(entries));
}

TEST_F(BridgeadmTest, AnUnknownInstanceCannotBeCopied) {
    expectFailure({"copy-instance", "Nougat64_9", "Nougat64_1"}, 3,
                  "no such instance: Nougat64_9\nbridgeadm: did you mean Nougat64?");
}

TEST_F(BridgeadmTest, AnInstanceIsNotCopiedOntoItself) {
    expectFailure({"copy-instance", "Nougat64", "Nougat64", "--overwrite"}, 2,
                  "an instance cannot be copied onto itself");
}

TEST_F(BridgeadmTest, ANameThatCannotBeReadBackIsRefused) {
    for (const std::string name : {"Nougat64_1.2", "Nougat64_a=b", "Nougat64_a\nb"}) {
        expectFailure({"copy-instance", "Nougat64", name}, 4, "not a valid instance name: " + name);
    }
}

TEST_F(BridgeadmTest, ANameWithoutAnImageIsRefused) {
    for (const std::string name : {"Typo", "nougat64", "_1", ""}) {
        expectFailure({"copy-instance", "Nougat64", name}, 3,
                      "instance " + name + " has an unknown image");
    }
}

TEST_F(BridgeadmTest, RemovesAnInstanceFromTheFile) {
    EXPECT_EQ(output({"remove-instance", "Nougat64"}), "removed the settings of Nougat64\n");
    Entries expected = globalDefaults();
    expected["vtr.instance.Nougat32.ram"] = "1024";
    addInstanceDefaults(expected, "Nougat32");
    EXPECT_EQ(file(), fileText(expected));
    expectFailure({"remove-instance", "Nougat64"}, 3,
                  "no such instance: Nougat64\nbridgeadm: did you mean Nougat32?");
}

TEST_F(BridgeadmTest, TheLastInstanceCanBeRemoved) {
    output({"remove-instance", "Nougat32"});
    output({"remove-instance", "Nougat64"});
    EXPECT_EQ(file(), fileText(globalDefaults()));
}

TEST_F(BridgeadmTest, AnInstanceOfAnUnknownImageCanBeRemoved) {
    Entries withTypo = entries;
    addInstanceDefaults(withTypo, "Typo");
    write(withTypo);
    output({"remove-instance", "Typo"});
    EXPECT_EQ(file(), fileText(entries));
}

TEST_F(BridgeadmTest, AFileThatCannotBeWrittenDoesNotChange) {
    entries["vtr.locale"] = std::string(4095 - 4 - std::string("vtr.locale").size() + 1, 'x');
    write(entries);
    const std::string error = "not committed: 7 XERR_2BIG\nbridgeadm: " + fileHint();
    expectFailure({"copy-instance", "Nougat64", "Nougat64_1"}, 6, error);
    expectFailure({"remove-instance", "Nougat64"}, 6, error);
}

TEST_F(BridgeadmTest, DumpsAnInstance) {
    EXPECT_EQ(output({"dump-instance", "Nougat64"}), dumpText(entries, "Nougat64"));
    EXPECT_EQ(output({"dump-instance", "Nougat32"}), dumpText(entries, "Nougat32"));
    EXPECT_EQ(file(), fileText(entries));
}

TEST_F(BridgeadmTest, ADumpHasTheInstancesKeysUnderGlobalNamesAndTwoLastLines) {
    const std::string text = output({"dump-instance", "Nougat64"});
    EXPECT_NE(text.find("\nvtr.display_name=Jeux 日本\n"), std::string::npos);
    EXPECT_NE(text.find("\nvtr.dpi=320\n"), std::string::npos);
    const std::string end = "\n" + kDumpEnd;
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(BridgeadmTest, ADumpCanBeJson) {
    EXPECT_EQ(output({"dump-instance", "Nougat64", "--json"}),
              jsonOfLines(dumpText(entries, "Nougat64")));
}

TEST_F(BridgeadmTest, BytesThatAreNotUtf8DoNotEndAJsonDump) {
    entries["vtr.guid"] = "a\xff";
    write(entries);
    EXPECT_NE(output({"dump-instance", "Nougat64", "--json"})
                  .find("\"key\": \"vtr.guid\",\n        \"value\": \"a\xef\xbf\xbd\"\n"),
              std::string::npos);
    EXPECT_EQ(output({"dump-instance", "Nougat64"}), dumpText(entries, "Nougat64"));
}

TEST_F(BridgeadmTest, AnUnknownInstanceCannotBeDumped) {
    expectFailure({"dump-instance", "Nougat"}, 3,
                  "no such instance: Nougat\nbridgeadm: did you mean Nougat32?");
}

TEST_F(BridgeadmTest, ALineTooLongForADumpIsAnErrorAndNotFatal) {
    const std::string tooLong(92, 'v');
    entries["vtr.shared_folders"] = tooLong;
    entries["vtr.instance.Nougat64.display_name"] = tooLong;
    write(entries);
    expectFailure({"dump-instance", "Nougat32"}, 4, "too long for a dump: vtr.shared_folders");
    const std::string both =
        "too long for a dump: vtr.instance.Nougat64.display_name vtr.shared_folders";
    expectFailure({"dump-instance", "Nougat64"}, 4, both);
    const ChildResult result = run({"dump-instance", "Nougat64", "--json"});
    EXPECT_EQ(result.status, 4u);
    EXPECT_EQ(result.out, R"({"code":4,"name":"BadValue","text":")" + both +
                              R"(","hint":null})"
                              "\n");
}

TEST_F(BridgeadmTest, AMissingFileIsAnError) {
    ASSERT_TRUE(::DeleteFileW(wideForTests(data / "vantrel.conf").c_str()));
    for (const Arguments& arguments :
         {Arguments{"copy-instance", "Nougat64", "Nougat64_1"},
          Arguments{"remove-instance", "Nougat64"}, Arguments{"dump-instance", "Nougat64"}}) {
        ProgramFixture::expectFailure(
            arguments, 5,
            "the configuration cannot be loaded: -1 XERR_FAILURE\nbridgeadm: " + fileHint());
    }
    EXPECT_EQ(data.list(), Arguments{"Logs"});
}

TEST_F(BridgeadmTest, AMalformedFileIsAnError) {
    for (const char* line : {"nonsense\n", "vtr.nothing=\"1\"\n", "vtr.locale=\n"}) {
        data.write("vantrel.conf", line);
        expectFailure(
            {"remove-instance", "Nougat64"}, 5,
            "the configuration cannot be loaded: -1 XERR_FAILURE\nbridgeadm: " + fileHint());
    }
}

TEST_F(BridgeadmTest, AMissingLogsFolderIsAnErrorAndNotFatal) {
    ASSERT_TRUE(::RemoveDirectoryW(wideForTests(data / "Logs").c_str()));
    const std::string error = "cannot open the log file " + data.path() +
                              "\\Logs/Player.log: 2 XERR_NOENT" +
                              "\nbridgeadm: the data folder is in the registry: "
                              "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo, value \"UserDefinedDir\"";
    expectFailure({"dump-instance", "Nougat64"}, 5, error);
    expectFailure({"trim"}, 5, error);
}

TEST_F(BridgeadmTest, LogsUnderItsNameToTheProductsLogOrTheGivenFile) {
    output({"remove-instance", "Nougat32"});
    const std::string line =
        logged::by("bridgeadm", logged::committing(data.path() + "\\vantrel.conf"));
    EXPECT_EQ(loggedLines(), Arguments{line});
    output({"--log-file", data / "new\\own.log", "remove-instance", "Nougat64"});
    EXPECT_EQ(logMessages(data.read("new\\own.log")), Arguments{line});
    EXPECT_EQ(loggedLines(), Arguments{line});
}

TEST_F(BridgeadmTest, TrimsTheProcessesOfTheInstallFolder) {
    // bridgeadm itself runs from that folder.
    const std::string program = productFile("bridgeadm.exe");
    registry.set("InstallDir",
                 program.substr(0, program.size() - std::string("bridgeadm.exe").size()));
    EXPECT_EQ(output({"trim"}), "trimmed the product's processes\n");
    const Arguments lines = loggedLines();
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&program](const std::string& line) {
        return line.rfind(logged::by("bridgeadm", logged::memoryTrimming()), 0) == 0 &&
               line.find(":" + program) == line.size() - program.size() - 1;
    })) << ::testing::PrintToString(lines);
}

TEST_F(BridgeadmTest, NothingElseIsTrimmed) {
    registry.set("InstallDir", "C:\\Nowhere\\");
    EXPECT_EQ(output({"trim"}), "trimmed the product's processes\n");
    EXPECT_EQ(loggedLines(), Arguments{});
}

TEST_F(BridgeadmTest, TrimmingNeedsNoConfiguration) {
    ASSERT_TRUE(::DeleteFileW(wideForTests(data / "vantrel.conf").c_str()));
    registry.set("InstallDir", "C:\\Nowhere\\");
    EXPECT_EQ(output({"trim"}), "trimmed the product's processes\n");
}

TEST_F(BridgeadmTest, WithoutAnInstallFolderNothingIsTrimmed) {
    expectFailure(
        {"trim"}, 5,
        "the registry has no install folder\nbridgeadm: reinstall the product, or set it: "
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo, value \"InstallDir\"");
}

TEST_F(BridgeadmTest, MisuseIsExplained) {
    const struct {
        Arguments arguments;
        const char* error;
    } cases[] = {
        {{"copy-instance", "Nougat64"}, "TARGET is missing"},
        {{"remove-instance"}, "NAME is missing"},
        {{"remove-instance", "a", "b"}, "unexpected argument: b"},
        {{"dump-instance"}, "NAME is missing"},
        {{"trim", "all"}, "unexpected argument: all"},
        {{"sync-apps", "Nougat64"}, "FILE is missing"},
        {{"update-app", "Nougat64"}, "PACKAGE is missing"},
        {{"update-app", "Nougat64", "com.a", "--version-code", "2147483648"},
         "--version-code: must be a 32-bit number, not \"2147483648\""},
        {{"update-app", "Nougat64", "com.a", "--version-code", "many"},
         "--version-code: must be a 32-bit number, not \"many\""},
        {{"remove-app", "Nougat64"}, "PACKAGE is missing"},
        {{"copy-cache", "Nougat64"}, "TARGET is missing"},
    };
    expectMisuse({}, "a command is missing");
    expectMisuse({"nonsense"}, "no such command: nonsense");
    expectMisuse({"help", "nonsense"}, "no such command: nonsense");
    for (const auto& [arguments, error] : cases) {
        expectMisuse(arguments, error, arguments.front());
    }
    expectFailure(
        {"dump-instance", "Nougat64", "--xml"}, 2,
        "no such option: --xml\nbridgeadm: an argument that begins with \"-\" comes after "
        "\"--\"");
    EXPECT_EQ(file(), fileText(entries));
}

TEST_F(BridgeadmTest, ACommandOfTheOtherProgramIsFoundThere) {
    expectFailure({"instances"}, 2,
                  "no such command: instances\nbridgeadm: it is a command of bridgectl: see "
                  "bridgectl help instances");
}

TEST_F(BridgeadmTest, EveryCommandHasAnExample) {
    const std::string text = output({"--help"});
    EXPECT_NE(text.find("\n   6  the change could not be written; the old file is whole\n"),
              std::string::npos);
    EXPECT_EQ(text.find("the doctor"), std::string::npos) << "not an exit code of this program";
    for (const std::string command :
         {"copy-cache", "copy-instance", "dump-instance", "help", "remove-app", "remove-instance",
          "sync-apps", "trim", "update-app"}) {
        EXPECT_NE(text.find("\n  " + command + " "), std::string::npos) << command;
        const std::string help = output({command, "--help"});
        EXPECT_NE(help.find("\n  bridgeadm " + command), std::string::npos) << help;
    }
    EXPECT_EQ(output({"--version"}), std::string("bridgeadm ") + kProductVersion + "\n");
}

TEST_F(BridgeadmTest, TheHelpCommandPrintsTheSameAsTheOption) {
    EXPECT_EQ(output({"help"}), output({"--help"}));
    EXPECT_EQ(output({"help", "trim"}), output({"trim", "--help"}));
}
