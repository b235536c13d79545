// bridgectl with a real registry, data folder, log and library.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "ConfExpectation.h"
#include "ProgramFixture.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/ProductVersion.h"
#include "support/WindowsForTests.h"

namespace {

std::size_t linesIn(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

const std::string kDataFolder =
    "the data folder is in the registry: HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo, value "
    "\"UserDefinedDir\"";

class BridgectlTest : public BridgectlFixture {
 protected:
    // The hint of a failed start.
    std::string places() const {
        return "the configuration is " + data.path() + "\\vantrel.conf, the log " + data.path() +
               "\\Logs/Player.log; " + kDataFolder + "; see bridgectl doctor";
    }

    BridgectlTest() {
        data.write("vantrel.conf",
                   "vtr.locale=\"fr-FR\"\nvtr.next_vm_id=\"3\"\nvtr.feature.rooting=\"maybe\"\n"
                   "vtr.instance.Nougat64.display_name=\"Jeux 日本\"\n"
                   "vtr.instance.Nougat64.cpus=\"4\"\nvtr.instance.Nougat64.ram=\"4096\"\n"
                   "vtr.instance.Nougat64.enable_vsync=\"1\"\n");
    }
};

}  // namespace

TEST_F(BridgectlTest, GetsEveryType) {
    EXPECT_EQ(output({"conf", "get", "vtr.locale"}), "fr-FR\n");
    EXPECT_EQ(output({"conf", "get", "vtr.next_vm_id"}), "3\n");
    EXPECT_EQ(output({"conf", "get", "vtr.enable_statusbar"}), "true\n");
    EXPECT_EQ(output({"conf", "get", "vtr.enable_navigationbar"}), "false\n");
    EXPECT_EQ(output({"conf", "get", "vtr.shared_folders"}),
              "Documents,Pictures,InputMapper,VtrSharedFolder\n");
    EXPECT_EQ(output({"conf", "get", "vtr.instance.Nougat64.display_name"}), "Jeux 日本\n");
}

TEST_F(BridgectlTest, ABoolWithoutAValueIsUnset) {
    const ChildResult result = run({"conf", "get", "vtr.prefer_dedicated_gpu"});
    EXPECT_EQ(result.status, 7u);
    EXPECT_EQ(result.out, "unset\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(BridgectlTest, AStoredValueThatCannotBeReadIsAnError) {
    expectFailure(
        {"conf", "get", "vtr.feature.rooting"}, 4,
        "vtr.feature.rooting is not of type bool: \"maybe\"\nbridgectl: set it: bridgectl "
        "conf set vtr.feature.rooting VALUE");
}

TEST_F(BridgectlTest, UnknownKeysAreErrors) {
    expectFailure({"conf", "get", "vtr.nothing"}, 3, "no such key: vtr.nothing");
    expectFailure({"conf", "get", "vtr.instance.Other.dpi"}, 3, "no such instance: Other");
    expectFailure({"conf", "get", "vtr.instance.Nougat64.nothing"}, 3,
                  "no such key: vtr.instance.Nougat64.nothing");
    expectFailure({"conf", "set", "vtr.nothing", "1"}, 3, "no such key: vtr.nothing");
    expectFailure({"conf", "unset", "vtr.nothing"}, 3, "no such key: vtr.nothing");
    expectFailure({"conf", "unset", "vtr.instance.Other.dpi"}, 3, "no such instance: Other");
    expectFailure({"conf", "list", "--instance", "Other"}, 3, "no such instance: Other");
}

TEST_F(BridgectlTest, SetsAndCommits) {
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "日本語 é"}), "vtr.locale: fr-FR -> 日本語 é\n");
    EXPECT_EQ(output({"conf", "set", "vtr.prefer_dedicated_gpu", "true"}),
              "vtr.prefer_dedicated_gpu: unset -> true\n");
    EXPECT_EQ(output({"conf", "set", "vtr.feature.rooting", "false"}),
              "vtr.feature.rooting: invalid: \"maybe\" -> false\n");
    EXPECT_EQ(output({"conf", "set", "--", "vtr.next_vm_id", "-5"}), "vtr.next_vm_id: 3 -> -5\n");
    const std::string text = data.read("vantrel.conf");
    EXPECT_NE(text.find("vtr.locale=\"日本語 é\"\n"), std::string::npos);
    EXPECT_NE(text.find("vtr.prefer_dedicated_gpu=\"1\"\n"), std::string::npos);
    EXPECT_NE(text.find("vtr.next_vm_id=\"-5\"\n"), std::string::npos);
}

TEST_F(BridgectlTest, ConfSetDoesNotCreateAnInstance) {
    const std::string before = data.read("vantrel.conf");
    expectFailure({"conf", "set", "vtr.instance.Nougat32.ram", "1024"}, 3,
                  "no such instance: Nougat32\nbridgectl: did you mean Nougat64?");
    expectFailure({"conf", "set", "vtr.instance.Nougat32_second.ram", "1024"}, 3,
                  "no such instance: Nougat32_second");
    EXPECT_EQ(data.read("vantrel.conf"), before);
}

TEST_F(BridgectlTest, WithoutTheFileAnyInstanceIsPossible) {
    const std::string file = data / "new.conf";
    EXPECT_EQ(
        output({"--no-conf", "conf", "set", "vtr.instance.Nougat32.ram", "1024", "--to", file}),
        "vtr.instance.Nougat32.ram: unset -> 1024\n");
    EXPECT_NE(data.read("new.conf").find("vtr.instance.Nougat32.ram=\"1024\"\n"),
              std::string::npos);
}

TEST_F(BridgectlTest, UnsettingRestoresTheDefault) {
    EXPECT_EQ(output({"conf", "unset", "vtr.next_vm_id"}), "vtr.next_vm_id: 3 -> 1\n");
    EXPECT_EQ(output({"conf", "unset", "vtr.locale"}), "vtr.locale: fr-FR -> \n");
    EXPECT_EQ(output({"conf", "unset", "vtr.feature.rooting"}),
              "vtr.feature.rooting: invalid: \"maybe\" -> false\n");
    EXPECT_EQ(output({"conf", "unset", "vtr.instance.Nougat64.display_name"}),
              "vtr.instance.Nougat64.display_name: Jeux 日本 -> Vantrel\n");
    EXPECT_EQ(output({"conf", "unset", "vtr.next_vm_id"}), "vtr.next_vm_id: 1 -> 1\n");
    const std::string text = data.read("vantrel.conf");
    EXPECT_NE(text.find("vtr.next_vm_id=\"1\"\n"), std::string::npos);
    EXPECT_NE(text.find("vtr.locale=\"\"\n"), std::string::npos);
    EXPECT_NE(text.find("vtr.instance.Nougat64.display_name=\"Vantrel\"\n"), std::string::npos);
}

TEST_F(BridgectlTest, AnEmptyDefaultThatCannotBeStoredIsRefused) {
    const std::string before = data.read("vantrel.conf");
    const struct {
        const char* type;
        const char* value;
        Lines keys;
    } cases[] = {{"bool",
                  "false",
                  {"vtr.prefer_dedicated_gpu", "vtr.feature.macros", "vtr.status.raw_mode",
                   "vtr.status.ssse3_available"}},
                 {"i32",
                  "0",
                  {"vtr.status.imap_schema_version", "vtr.instance.Nougat64.cpus",
                   "vtr.instance.Nougat64.fb_height", "vtr.instance.Nougat64.fb_width",
                   "vtr.instance.Nougat64.ram", "vtr.instance.Nougat64.status.adb_port"}}};
    for (const auto& [type, value, keys] : cases) {
        for (const std::string& key : keys) {
            expectFailure(
                {"conf", "unset", key}, 4,
                key + " has an empty default, which the library cannot store: its type is " + type +
                    "\nbridgectl: set it to a value: bridgectl conf set " + key + " " + value);
        }
    }
    EXPECT_EQ(data.read("vantrel.conf"), before);
}

TEST_F(BridgectlTest, AnInstanceOfAnUnknownImageIsNotCreated) {
    const std::string before = data.read("vantrel.conf");
    expectFailure({"conf", "set", "vtr.instance.Typo.ram", "1024"}, 3,
                  "instance Typo has an unknown image");
    expectFailure({"conf", "set", "vtr.instance..ram", "1024"}, 3,
                  "instance  has an unknown image");
    EXPECT_EQ(data.read("vantrel.conf"), before);
}

TEST_F(BridgectlTest, ValuesOfTheWrongTypeChangeNothing) {
    const std::string before = data.read("vantrel.conf");
    expectFailure({"conf", "set", "vtr.next_vm_id", "many"}, 4,
                  "vtr.next_vm_id cannot be \"many\": its type is i32");
    expectFailure({"conf", "set", "vtr.enable_statusbar", "on"}, 4,
                  "vtr.enable_statusbar cannot be \"on\": its type is bool");
    EXPECT_EQ(data.read("vantrel.conf"), before);
}

TEST_F(BridgectlTest, ValuesThatDoNotFitInALineChangeNothing) {
    const std::string before = data.read("vantrel.conf");
    expectFailure({"conf", "set", "vtr.locale", "a\nb"}, 4,
                  "vtr.locale and its value do not fit in one line of the file: 22 XERR_INVAL");
    // A line has four characters besides key and value, and fewer than 4096 in all.
    const std::string longest(4095 - 4 - std::string("vtr.locale").size(), 'x');
    expectFailure({"conf", "set", "vtr.locale", longest + "x"}, 4,
                  "vtr.locale and its value do not fit in one line of the file: 7 XERR_2BIG");
    EXPECT_EQ(data.read("vantrel.conf"), before);
    EXPECT_EQ(output({"conf", "set", "vtr.locale", longest}),
              "vtr.locale: fr-FR -> " + longest + "\n");
}

TEST_F(BridgectlTest, ValuesMayLookLikeSomethingElse) {
    std::string before = "fr-FR";
    for (const std::string value : {"/data/x", "/to", "list", "instances", "[a,b]", "{}", "", "a=b",
                                    "\"quoted\"", "C:\\a b\\", "%PATH%"}) {
        EXPECT_EQ(output({"conf", "set", "vtr.locale", value}),
                  "vtr.locale: " + before + " -> " + value + "\n");
        EXPECT_EQ(output({"conf", "get", "vtr.locale"}), value + "\n");
        before = value;
    }
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "--", "--to"}),
              "vtr.locale: " + before + " -> --to\n");
}

TEST_F(BridgectlTest, CommitsToAnotherFile) {
    const std::string before = data.read("vantrel.conf");
    const std::string copy = data / "new\\copy.conf";
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "de", "--to", copy}),
              "vtr.locale: fr-FR -> de\n");
    EXPECT_EQ(data.read("vantrel.conf"), before);
    EXPECT_NE(data.read("new\\copy.conf").find("vtr.locale=\"de\"\n"), std::string::npos);
}

TEST_F(BridgectlTest, ACommitThatFailsSaysWhy) {
    data.makeFolder("vantrel.conf-temp");
    expectFailure({"conf", "set", "vtr.locale", "de"}, 6,
                  "not committed: 13 XERR_ACCES\nbridgectl: the file is " + data.path() +
                      "\\vantrel.conf; see bridgectl doctor");
}

TEST_F(BridgectlTest, ListsAnInstanceAsATable) {
    const std::string text = output({"conf", "list", "--instance", "Nougat64"});
    EXPECT_EQ(text.rfind("KEY                                             TYPE          VALUE\n"
                         "vtr.instance.Nougat64.abi_list                  multi-string\n",
                         0),
              0u)
        << text;
    EXPECT_NE(text.find("vtr.instance.Nougat64.enable_vsync              bool          true\n"),
              std::string::npos);
    EXPECT_EQ(linesIn(text), 1 + instanceCount());
}

TEST_F(BridgectlTest, ListsGlobalKeysAsJson) {
    const std::string text = output({"conf", "list", "--global", "--json"});
    EXPECT_NE(text.find("    {\n        \"key\": \"vtr.feature.macros\",\n"
                        "        \"type\": \"bool\",\n        \"value\": null\n    },\n"),
              std::string::npos);
    EXPECT_NE(text.find("        \"value\": null,\n        \"invalid\": \"maybe\"\n"),
              std::string::npos);
    EXPECT_NE(text.find("        \"key\": \"vtr.next_vm_id\",\n        \"type\": \"i32\",\n"
                        "        \"value\": 3\n"),
              std::string::npos);
    EXPECT_EQ(text.find("vtr.instance."), std::string::npos);
}

TEST_F(BridgectlTest, ListsEverything) {
    const std::string text = output({"conf", "list"});
    EXPECT_EQ(linesIn(text), 1 + globalCount() + instanceCount());
    EXPECT_NE(text.find("invalid: \"maybe\"\n"), std::string::npos);
    EXPECT_NE(text.find("unset\n"), std::string::npos);
}

TEST_F(BridgectlTest, AnInstanceNameWithANulCharacterIsNotFatal) {
    const std::string name = "Nougat64_1" + std::string(1, '\0');
    data.write("vantrel.conf", "vtr.locale=\"fr\"\nvtr.instance." + name + ".ram=\"1\"\n");
    EXPECT_EQ(linesIn(output({"conf", "list"})), 1 + globalCount());
    EXPECT_EQ(linesIn(output({"instances"})), 2u);
}

TEST_F(BridgectlTest, ListsInstancesAsATable) {
    data.write("vantrel.conf",
               "vtr.instance.Nougat64.display_name=\"日本\"\n"
               "vtr.instance.Nougat64.cpus=\"4\"\n"
               "vtr.instance.Nougat64.graphics_engine=\"aga\"\n"
               "vtr.instance.Nougat64.graphics_renderer=\"dx\"\n"
               "vtr.instance.Nougat64_10.ram=\"2048\"\n");
    EXPECT_EQ(output({"instances"}),
              "INSTANCE     NAME     IMAGE     CPU  RAM   GRAPHICS  PROFILE\n"
              "Nougat64     日本     Nougat64  4    0     aga/dx\n"
              "Nougat64_10  Vantrel  Nougat64  0    2048  /\n");
}

TEST_F(BridgectlTest, ListsInstancesAsTheLibrarysJson) {
    data.write("vantrel.conf", "");
    EXPECT_EQ(output({"instances", "--json"}), "[\n]\n");
}

TEST_F(BridgectlTest, AnInstanceOfAnUnknownImageIsAnErrorAndNotFatal) {
    data.write("vantrel.conf", "vtr.instance.Pie64_1.ram=\"1\"\n");
    expectFailure({"instances"}, 3, "instance Pie64_1 has an unknown image");
}

TEST_F(BridgectlTest, AnInstanceWithUnreadableNumbersIsAnErrorAndNotFatal) {
    for (const char* property : {"ram", "cpus"}) {
        const std::string key = std::string("vtr.instance.Nougat64.") + property;
        data.write("vantrel.conf", key + "=\"many\"\n");
        expectFailure({"instances"}, 4,
                      key +
                          " is not of type i32: \"many\"\nbridgectl: set it: bridgectl conf set " +
                          key + " VALUE");
    }
}

TEST_F(BridgectlTest, ListsAppsAsATable) {
    data.write("Engine\\Nougat64\\AppCache\\com.a.png", "icon");
    data.write("Engine\\Nougat64\\AppCache\\AppCache.json",
               R"([{"package": "com.b", "activity": "com.b.Main", "appLabel": "B",
                    "versionCode": -1, "versionName": ""},
                   {"package": "com.a", "activity": "com.a.Start", "appLabel": "日本",
                    "versionCode": 12, "versionName": "1.0"}])");
    EXPECT_EQ(output({"apps", "Nougat64"}),
              "NAME  PACKAGE  ACTIVITY     VERSION   ICON\n"
              "日本  com.a    com.a.Start  1.0 (12)  yes\n"
              "B     com.b    com.b.Main   (-1)      no\n");
}

TEST_F(BridgectlTest, ListsAppsAsTheLibrarysJson) {
    EXPECT_EQ(output({"apps", "Nougat64", "--json"}), "[\n]\n") << "there is no cache";
    EXPECT_EQ(output({"--no-conf", "apps", "Any", "--json"}), "[\n]\n");
    EXPECT_EQ(output({"apps", "Nougat64"}), "NAME  PACKAGE  ACTIVITY  VERSION  ICON\n");
}

TEST_F(BridgectlTest, AnAppCacheThatCannotBeReadIsAnErrorOfTheLibrary) {
    data.write("Engine\\Nougat64\\AppCache\\AppCache.json", "[3]");
    expectFailure({"apps", "Nougat64"}, 5, "the library returned no listing; see the log");
    EXPECT_EQ(logMessages(data.read("Logs\\Player.log")).back(),
              logged::byHelper(logged::appsNotListed()));
}

TEST_F(BridgectlTest, WithoutTheFileThereIsNothingToCommitTo) {
    expectFailure({"--no-conf", "conf", "set", "vtr.locale", "de"}, 2,
                  "--no-conf leaves no file to commit to: add --to FILE");
    expectFailure({"--no-conf", "conf", "unset", "vtr.locale"}, 2,
                  "--no-conf leaves no file to commit to");
    const std::string file = data / "défaut.conf";
    EXPECT_EQ(output({"--no-conf", "conf", "set", "vtr.locale", "de", "--to", file}),
              "vtr.locale:  -> de\n");
    EXPECT_NE(data.read("défaut.conf").find("vtr.locale=\"de\"\n"), std::string::npos);
}

TEST_F(BridgectlTest, WithoutTheFileTheDefaultsAreShown) {
    EXPECT_EQ(output({"--no-conf", "conf", "get", "vtr.next_vm_id"}), "1\n");
    EXPECT_EQ(output({"--no-conf", "instances", "--json"}), "[\n]\n");
}

TEST_F(BridgectlTest, LogsUnderItsClientsNameToTheGivenFile) {
    output({"--client", "Installer", "--log-file", data / "own.log", "conf", "get", "vtr.locale"});
    EXPECT_EQ(logMessages(data.read("own.log"))[0],
              logged::by("Installer_bridge", logged::initialising("Installer")));
    EXPECT_FALSE(data.has("Logs\\Player.log"));
}

TEST_F(BridgectlTest, AMissingFileIsAnErrorOfTheLibrary) {
    ASSERT_TRUE(::DeleteFileW(wideForTests(data / "vantrel.conf").c_str()));
    expectFailure({"conf", "get", "vtr.locale"}, 5,
                  "the library did not start: -1 XERR_FAILURE\nbridgectl: " + places());
}

TEST_F(BridgectlTest, AMalformedFileIsAnErrorOfTheLibrary) {
    for (const char* line : {"nonsense\n", "vtr.nothing=\"1\"\n", "vtr.locale=\n"}) {
        data.write("vantrel.conf", line);
        expectFailure({"conf", "list"}, 5,
                      "the library did not start: -1 XERR_FAILURE\nbridgectl: " + places());
    }
}

TEST_F(BridgectlTest, AMissingFolderOfTheGivenLogIsCreated) {
    EXPECT_EQ(output({"--log-file", data / "new\\own.log", "conf", "get", "vtr.locale"}),
              "fr-FR\n");
    EXPECT_TRUE(data.has("new\\own.log"));
}

TEST_F(BridgectlTest, AMissingLogsFolderIsAnErrorAndNotFatal) {
    ASSERT_TRUE(::RemoveDirectoryW(wideForTests(data / "Logs").c_str()));
    expectFailure({"conf", "get", "vtr.locale"}, 5,
                  "cannot open the log file " + data.path() +
                      "\\Logs/Player.log: 2 XERR_NOENT\nbridgectl: " + kDataFolder);
}

TEST_F(BridgectlTest, TheLibraryRejectsAnUnknownClient) {
    for (const Arguments& command : {Arguments{"conf", "get", "vtr.locale"}, Arguments{"events"}}) {
        const ChildResult result = run(joined({"--client", "Other"}, command));
        EXPECT_EQ(result.status, 5u);
        EXPECT_NE(result.err.find("bridgectl: the library did not start: 22 XERR_INVAL\n"),
                  std::string::npos);
    }
}

TEST_F(BridgectlTest, AnotherProductVersionStopsTheLauncherOnly) {
    registry.set("Version", std::string(kProductVersion) + "0");
    EXPECT_EQ(run({"--client", "Launcher", "conf", "get", "vtr.locale"}).status, 5u);
    EXPECT_EQ(output({"--client", "Helper", "conf", "get", "vtr.locale"}), "fr-FR\n");
}

namespace {

class BridgectlProgramsTest : public BridgectlTest {
 protected:
    BridgectlProgramsTest() { useStandins("none", "60"); }

    // Waits until the stand-ins have written `count` lines, and returns them.
    Lines waitForLines(std::size_t count) const {
        Lines lines;
        for (int i = 0; i < 3000 && lines.size() < count; ++i) {
            ::Sleep(10);
            if (data.has("standins.txt")) lines = logMessages(data.read("standins.txt"));
        }
        EXPECT_EQ(lines.size(), count);
        lines.resize(count);
        return lines;
    }

    static std::string commandLine(const std::string& name) {
        const std::string path = standinProgram(name);
        std::string quoted;
        for (const char c : path) quoted += c == '\\' ? std::string("\\\\") : std::string(1, c);
        return "commandLine: \"" + quoted + "\"";
    }
};

}  // namespace

TEST_F(BridgectlProgramsTest, LaunchesAnAppAndShutsThePlayerDown) {
    EXPECT_EQ(output({"launch", "Nougat64", "com.example.app"}), "started\n");
    EXPECT_EQ(waitForLines(2), (Arguments{commandLine("QX-Player.exe") +
                                              R"( "--instance" "Nougat64" "--cmd" )"
                                              R"("launchApp" "--package" "com.example.app")",
                                          "serving: vtr_plr_Nougat64_nvo"}));
    EXPECT_EQ(output({"shutdown", "Nougat64", "--flag"}), "asked the player of Nougat64\n");
    EXPECT_EQ(waitForLines(4)[2], "plrShutdownRpc(true)");
    EXPECT_EQ(waitForLines(4)[3], "ended: vtr_plr_Nougat64_nvo");
}

TEST_F(BridgectlProgramsTest, EveryCommandHasItsCommandLine) {
    const struct {
        Arguments command;
        std::string line;
    } cases[] = {
        {{"launch-url", "Nougat64", "https://example.com/?a b"},
         R"( "--instance" "Nougat64" "--cmd" "launchUrl" "--url" "https://example.com/?a b")"},
        {{"app-store", "Nougat64", "play", "com.a"},
         R"( "--instance" "Nougat64" "--cmd" "installApp" "--package" "com.a" "--store" "play")"},
        {{"install-apk", "Nougat64", "C:\\é\\a.apk"},
         R"( "--instance" "Nougat64" "--cmd" "installApk" "--filepath" "C:\\é\\a.apk")"},
        {{"uninstall", "Nougat64", "com.a"},
         R"( "--instance" "Nougat64" "--cmd" "uninstallApp" "--package" "com.a")"},
    };
    std::size_t lines = 0;
    for (const auto& [command, line] : cases) {
        EXPECT_EQ(output(command), "started\n");
        lines += lines == 0 ? 2 : 1;  // the first player keeps serving
        EXPECT_EQ(waitForLines(lines)[lines == 2 ? 0 : lines - 1],
                  commandLine("QX-Player.exe") + line);
    }
    output({"shutdown", "Nougat64"});
    EXPECT_EQ(waitForLines(lines + 2)[lines], "plrShutdownRpc(false)");
}

TEST_F(BridgectlProgramsTest, ShutdownWithoutANameIncludesTheManager) {
    EXPECT_EQ(output({"install-image", "Nougat32"}), "started\n");
    EXPECT_EQ(waitForLines(2),
              (Arguments{commandLine("QX-MultiInstanceManager.exe") +
                             R"( "--hidden" "--cmd" "installImage" "--imageName" "Nougat32")",
                         "serving: vtr_mim_nvo"}));
    EXPECT_EQ(output({"create-instance", "Nougat64", "4", "", "aga", "dx", "s21 \"u\""}),
              "started\n");
    EXPECT_EQ(waitForLines(3)[2],
              commandLine("QX-MultiInstanceManager.exe") +
                  R"( "--hidden" "--cmd" "createFreshInstance" "--imageName" "Nougat64" "--cpu" )"
                  R"("4" "--ram" "" "--graphicEngine" "aga" "--graphicRenderer" "dx" )"
                  R"("--deviceProfile" "s21 \"u\"")");
    EXPECT_EQ(output({"shutdown"}), "asked the manager and every player\n");
    EXPECT_EQ(waitForLines(5)[3], "mimShutdownRpc()");
}

TEST_F(BridgectlProgramsTest, ShutdownOfAnEmptyNameAsksNoProgram) {
    const Arguments install{"install-image", "Nougat32"};
    EXPECT_EQ(output(install), "started\n");
    const std::string started = waitForLines(2)[0];
    expectFailure({"shutdown", ""}, 3, "no such instance: ");
    EXPECT_EQ(output(install), "started\n");
    EXPECT_EQ(waitForLines(3)[2], started) << "the manager goes on serving";
    EXPECT_EQ(output({"shutdown"}), "asked the manager and every player\n");
    EXPECT_EQ(waitForLines(5)[3], "mimShutdownRpc()");
}

TEST_F(BridgectlProgramsTest, OutputCanBeJson) {
    options.environment.push_back({"QX_STANDIN_FORMAT", "json"});
    output({"launch", "Nougat64", "com.a"});
    EXPECT_EQ(waitForLines(2)[1], R"({"serving":"vtr_plr_Nougat64_nvo"})");
    output({"shutdown", "Nougat64"});
    EXPECT_EQ(waitForLines(4)[2],
              R"({"request":"plrShutdownRpc","opcode":2000,"replyLength":0,"arguments":[false]})");
}

TEST_F(BridgectlProgramsTest, AMissingProgramIsAnError) {
    registry.set("InstallDir", "C:\\Nowhere\\");
    const ChildResult result = run({"launch", "Nougat64", "com.a"});
    EXPECT_EQ(result.status, 8u);
    EXPECT_EQ(result.err,
              "bridgectl: not started: 2 XERR_NOENT\nbridgectl: the program is "
              "C:\\Nowhere\\QX-Player.exe; its folder is in the registry: "
              "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo, value \"InstallDir\"; see bridgectl "
              "doctor\n");
}

TEST_F(BridgectlTest, WithoutAnInstallFolderNothingIsStarted) {
    expectFailure(
        {"launch", "Nougat64", "com.a"}, 5,
        "the registry has no install folder\nbridgectl: reinstall the product, or set it: "
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo, value \"InstallDir\"");
}

TEST_F(BridgectlTest, MisuseIsExplained) {
    expectMisuse({"conf", "get"}, "KEY is missing", "conf get");
    expectMisuse({"conf", "get", "a", "b"}, "unexpected argument: b", "conf get");
    expectMisuse({"instances", "--xml"}, "no such option: --xml", "instances");
    expectMisuse({"--client"}, "--client: the value is missing");
}

TEST_F(BridgectlTest, HelpNamesCommandsAndExitCodes) {
    const std::string text = output({"--help"});
    for (const char* part :
         {"\n  conf get ", "\n  instances ", "\n  --client ID ", "\n  --log-file FILE ",
          "\n  --no-conf ", "\n   7  the key has no value\n",
          "\n  10  another front end receives the client's events\n"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(output({"conf", "get", "--help"}),
              "Print the value of a key\n\nUsage: bridgectl conf get [OPTION...] KEY\n\n"
              "Arguments:\n  KEY         Full key, such as vtr.locale\n\n"
              "Options:\n  -h, --help  Print this help\n\n"
              "Output options:\n  --json      Print JSON\n"
              "  --quiet     Print only results and errors\n"
              "  --timing    Print the time spent in the library on standard error\n\n"
              "Examples:\n  bridgectl conf get vtr.locale\n"
              "  bridgectl conf get vtr.instance.Nougat64.dpi --json\n\n"
              "A key without a value prints \"unset\" and ends with exit code 7.\n");
    EXPECT_EQ(output({"--version"}), std::string("bridgectl ") + kProductVersion +
                                         "\nQX-Bridge.dll " + kProductVersion + "\n");
}

TEST_F(BridgectlTest, TheHelpCommandPrintsTheSameAsTheOption) {
    for (const Arguments& command : {Arguments{}, Arguments{"conf"}, Arguments{"conf", "set"}}) {
        Arguments before = command;
        before.insert(before.begin(), "help");
        Arguments after = command;
        after.push_back("--help");
        EXPECT_EQ(output(before), output(after));
    }
}
