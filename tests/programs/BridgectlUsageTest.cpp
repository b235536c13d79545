// Errors in command lines, and the hints for them.
#include <gtest/gtest.h>

#include <string>

#include "DocumentPages.h"
#include "ProgramFixture.h"
#include "support/RegistryKey.h"
#include "support/WindowsForTests.h"

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

// The number of private registries, of running and of ended processes.
unsigned developmentKeys() {
    HKEY key = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\QX-Bridge", 0, KEY_READ, &key) !=
        ERROR_SUCCESS) {
        return 0;
    }
    DWORD count = 0;
    ::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr,
                       nullptr, nullptr, nullptr);
    ::RegCloseKey(key);
    return count;
}

}  // namespace

TEST_F(BridgectlUsageTest, AnEmptyValueIsMisuseAndLeavesTheConfigurationAlone) {
    const struct {
        Arguments before;
        std::string option;
        Arguments after;
        const char* command;
    } cases[] = {
        {{"conf", "set", "vtr.locale", "de"}, "--to", {}, "conf set"},
        {{}, "--log-file", {"version"}, ""},
        {{}, "--client", {"version"}, ""},
        {{"conf", "list"}, "--instance", {}, "conf list"},
        {{"events"}, "--record", {}, "events"},
    };
    const std::string before = file();
    for (const auto& [start, option, end, command] : cases) {
        for (const Arguments& empty : {Arguments{option, ""}, Arguments{option + "="}}) {
            expectMisuse(joined(joined(start, empty), end), option + ": the value is empty",
                         command);
        }
    }
    EXPECT_EQ(file(), before);
    EXPECT_FALSE(data.has("Logs\\Player.log"));
}

TEST_F(BridgectlUsageTest, AValueThatEndsWithAnEqualsSignIsAValue) {
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "a="}), "vtr.locale: fr-FR -> a=\n");
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "--", "--to="}), "vtr.locale: a= -> --to=\n");
}

TEST_F(BridgectlUsageTest, AMistypedCommandHasItsNearest) {
    expectFailure({"instnaces"}, 2,
                  "no such command: instnaces\nbridgectl: did you mean instances?");
    expectFailure({"conf", "gte", "vtr.locale"}, 2,
                  "no such command: conf gte\nbridgectl: did you mean conf get?");
    expectFailure({"INSTANCES"}, 2,
                  "no such command: INSTANCES\nbridgectl: did you mean instances?");
    expectMisuse({"nonsense"}, "no such command: nonsense");
    expectMisuse({}, "a command is missing");
    expectMisuse({"conf"}, "a command is missing", "conf");
}

TEST_F(BridgectlUsageTest, AMistypedOptionHasItsNearest) {
    expectFailure({"instances", "--jsn"}, 2,
                  "no such option: --jsn\nbridgectl: did you mean --json?");
    expectFailure({"--jsn"}, 2, "no such option: --jsn\nbridgectl: did you mean --json?");
}

TEST_F(BridgectlUsageTest, AnOptionInTheWrongPlaceIsExplained) {
    expectFailure({"instances", "--client", "Helper"}, 2,
                  "no such option: --client\nbridgectl: --client comes before the command");
    expectFailure({"conf", "set", "vtr.locale", "-x"}, 2,
                  "no such option: -x\nbridgectl: an argument that begins with \"-\" comes after "
                  "\"--\"");
}

TEST_F(BridgectlUsageTest, ChoicesAreNamedWithTheNearest) {
    expectFailure({"completion", "bsh"}, 2,
                  "SHELL: must be one of bash, powershell, not \"bsh\"\nbridgectl: did you mean "
                  "bash?");
}

TEST_F(BridgectlUsageTest, TheHelpOfAMistypedCommandHasItsNearest) {
    expectFailure({"help", "instnaces"}, 2,
                  "no such command: instnaces\nbridgectl: did you mean instances?");
    expectMisuse({"help", "conf", "nonsense"}, "no such command: conf nonsense");
}

TEST_F(BridgectlUsageTest, ACommandOfTheOtherProgramIsFoundThere) {
    for (const std::string name : {"copy-instance", "remove-instance", "dump-instance"}) {
        expectFailure({name, "Nougat64"}, 2,
                      "no such command: " + name +
                          "\nbridgectl: it is a command of bridgeadm: see bridgeadm help " + name);
    }
    expectFailure({"copy", "Nougat64", "Nougat64_1"}, 2,
                  "no such command: copy\nbridgectl: instances are copied by bridgeadm: see "
                  "bridgeadm help copy-instance");
}

TEST_F(BridgectlUsageTest, AMistypedKeyHasItsNearest) {
    const struct {
        const char* wrong;
        const char* meant;
    } keys[] = {{"vtr.lcoale", "vtr.locale"},
                {"vtr.Locale", "vtr.locale"},
                {"locale", "vtr.locale"},
                {"vtr.instance.Nougat64.dip", "vtr.instance.Nougat64.dpi"},
                {"vtr.instance.Nougat64.displayname", "vtr.instance.Nougat64.display_name"}};
    for (const auto& [wrong, meant] : keys) {
        expectFailure(
            {"conf", "get", wrong}, 3,
            std::string("no such key: ") + wrong + "\nbridgectl: did you mean " + meant + "?");
    }
    expectFailure({"conf", "get", "vtr.instance.Nougat64"}, 3,
                  "no such key: vtr.instance.Nougat64");
}

TEST_F(BridgectlUsageTest, AMistypedInstanceHasItsNearest) {
    const std::string error = "no such instance: Nuogat64\nbridgectl: did you mean Nougat64?";
    expectFailure({"conf", "get", "vtr.instance.Nuogat64.dpi"}, 3, error);
    expectFailure({"conf", "list", "--instance", "Nuogat64"}, 3, error);
    expectFailure({"apps", "Nuogat64"}, 3, error);
    expectFailure({"apps", "Other"}, 3, "no such instance: Other");
}

TEST_F(BridgectlUsageTest, RangesAreWrittenAsPeopleDo) {
    expectMisuse({"events", "--count", "0"}, "--count: must be 1 or more, not \"0\"", "events");
    expectMisuse({"events", "--count", "x"}, "--count: must be 1 or more, not \"x\"", "events");
    expectMisuse({"events", "--timeout", "1000001"},
                 "--timeout: must be 1 to 1000000, not \"1000001\"", "events");
    const std::string help = output({"help", "events"});
    EXPECT_NE(help.find("\n  --count NUMBER     End after this many events, 1 or more\n"
                        "  --timeout NUMBER   End after this many seconds, 1 to 1000000\n"),
              std::string::npos)
        << help;
}

TEST_F(BridgectlUsageTest, AStartThatFailsNamesFileLogAndRegistryValue) {
    const std::string registryValue =
        "the data folder is in the registry: HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo, value "
        "\"UserDefinedDir\"";
    const std::string places = "the configuration is " + data.path() + "\\vantrel.conf, the log ";
    data.write("vantrel.conf", "nonsense\n");
    expectFailure({"instances"}, 5,
                  "the library did not start: -1 XERR_FAILURE\nbridgectl: " + places + data.path() +
                      "\\Logs/Player.log; " + registryValue + "; see bridgectl doctor");
    const std::string own = data / "own.log";
    expectFailure({"--log-file", own, "instances"}, 5,
                  "the library did not start: -1 XERR_FAILURE\nbridgectl: " + places + own + "; " +
                      registryValue + "; see bridgectl doctor");
}

TEST_F(BridgectlUsageTest, ALogThatCannotBeOpenedNamesTheRegistryValue) {
    registry.set("UserDefinedDir", data / "nowhere");
    expectFailure({"instances"}, 5,
                  "cannot open the log file " + data.path() +
                      "\\nowhere\\Logs/Player.log: 2 XERR_NOENT\nbridgectl: the data folder is in "
                      "the registry: HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo, value "
                      "\"UserDefinedDir\"");
}

TEST_F(BridgectlUsageTest, CompletionOffersWhatTheProductHas) {
    for (const char* folder : {"Engine", "Engine\\Nougat64", "Engine\\Nougat64\\AppCache"}) {
        data.makeFolder(folder);
    }
    data.write(
        "Engine\\Nougat64\\AppCache\\AppCache.json",
        R"([{"package": "com.b"}, {"activity": "x"}, {"package": 3}, {"package": "com.a"}])");
    EXPECT_EQ(output({"complete", "--", "conf", "list", "--instance"}), "Nougat64\nNougat64_1\n");
    const std::string options = "--help\n--json\n--quiet\n--timing\n";
    EXPECT_EQ(output({"complete", "--", "apps"}), "Nougat64\nNougat64_1\n" + options);
    EXPECT_EQ(output({"complete", "--", "uninstall", "Nougat64"}).rfind("com.b\ncom.a\n--", 0), 0u);
    EXPECT_EQ(output({"complete", "--", "uninstall", "Nougat64_1"}).rfind("--", 0), 0u);
    EXPECT_EQ(output({"complete", "--", "--client"}),
              "Launcher\nInstaller\nLogCollector\nHelper\nUninstaller\n");
    const std::string keys = output({"complete", "--", "conf", "get"});
    EXPECT_NE(keys.find("\nvtr.locale\n"), std::string::npos);
    EXPECT_NE(keys.find("\nvtr.instance.Nougat64_1.dpi\n"), std::string::npos);
    EXPECT_FALSE(data.has("Logs\\Player.log")) << "the library was started";
}

TEST_F(BridgectlUsageTest, CompletionWithoutAConfigurationOffersTheGlobalKeys) {
    registry.set("UserDefinedDir", data / "nowhere");
    const std::string keys = output({"complete", "--", "conf", "get"});
    EXPECT_NE(keys.find("\nvtr.locale\n"), std::string::npos);
    EXPECT_EQ(keys.find("vtr.instance."), std::string::npos);
    EXPECT_EQ(output({"complete", "--", "conf", "list", "--instance"}), "");
}

TEST_F(BridgectlUsageTest, DevelopmentFoldersNeedNoRegistry) {
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kProductKey);
    const unsigned before = developmentKeys();
    const Arguments line{"--data-folder", data.path(), "--install-folder", standinProgram(""),
                         "conf",          "get",       "vtr.locale"};
    EXPECT_EQ(output(line), "fr-FR\n");
    EXPECT_TRUE(data.has("Logs\\Player.log"));
    EXPECT_EQ(developmentKeys(), before) << "its own registry is left behind";
}

TEST_F(BridgectlUsageTest, DevelopmentFoldersOverrideTheRegistry) {
    registry.set("UserDefinedDir", data / "nowhere");
    const Arguments folders{"--data-folder", data.path(), "--install-folder", data.path()};
    Arguments line = folders;
    line.push_back("instances");
    EXPECT_EQ(output(line).rfind("INSTANCE ", 0), 0u);
    EXPECT_EQ(run({"instances"}).status, 5u);
}

TEST_F(BridgectlUsageTest, DevelopmentFoldersMayBeRelative) {
    options.folder = data.path();
    data.makeFolder("installed");
    const std::string text =
        run({"--data-folder", ".", "--install-folder", "installed", "doctor"}).out;
    EXPECT_NE(text.find("\"InstallDir\" has no QX-Player.exe: " + data.path() + "\\installed\\;"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("ok: registry: \"UserDefinedDir\" is " + data.path() + "\n"),
              std::string::npos);
}

TEST_F(BridgectlUsageTest, OneDevelopmentFolderAloneIsMisuse) {
    expectMisuse({"--data-folder", data.path(), "instances"},
                 "--data-folder requires --install-folder");
    expectMisuse({"--install-folder", data.path(), "doctor"},
                 "--install-folder requires --data-folder");
    expectMisuse({"--data-folder=", "--install-folder", "x", "instances"},
                 "--data-folder: the value is empty");
}

TEST_F(BridgectlUsageTest, TheReferencePageHasTheHelpOfEveryProgram) {
    const std::string page = kCommandsPage;
    for (const char* name : {"bridgectl.exe", "bridgeadm.exe"}) {
        const std::string help = runChild(productFile(name), {"help", "--markdown"}, options).out;
        ASSERT_GT(help.size(), 3000u) << name;
        EXPECT_NE(page.find("\n" + help + "\n"), std::string::npos)
            << "docs/reference/command-line.md must have the output of help --markdown of " << name;
    }
    const std::string help = runChild(standinProgram("QX-Player.exe"), {"--help"}, options).out;
    ASSERT_GT(help.size(), 1000u);
    EXPECT_NE(page.find("\n```text\n" + help + "```\n"), std::string::npos);
}
