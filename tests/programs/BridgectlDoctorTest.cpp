// `bridgectl doctor` on an intact product, and on products with one problem.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "ProgramFixture.h"
#include "support/RegistryKey.h"
#include "support/WindowsForTests.h"

namespace {

using Json = nlohmann::ordered_json;

class BridgectlDoctorTest : public BridgectlFixture {
 protected:
    BridgectlDoctorTest() {
        useStandins("none", "1");
        data.write("vantrel.conf", "vtr.locale=\"fr-FR\"\nvtr.instance.Nougat64.ram=\"4096\"\n");
    }

    // The problems, one per line. Also checks the exit code.
    std::string problems() const {
        const ChildResult result = run({"doctor"});
        EXPECT_EQ(result.err, "");
        std::string text;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("problem: ", 0) == 0) text += line.substr(9) + "\n";
        }
        EXPECT_EQ(result.status, text.empty() ? 0u : 1u);
        return text;
    }

    std::string conf() const { return data / "vantrel.conf"; }
    std::string install() const { return standinProgram(""); }
};

// The lines without the accounts, which depend on the machine.
std::string withoutWriters(const std::string& text) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        result += line.substr(0, line.find(", writable by ")) + "\n";
    }
    return result;
}

const std::string kValue = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo, value ";

}  // namespace

TEST_F(BridgectlDoctorTest, AnIntactProductHasNoProblems) {
    const std::string text = output({"doctor"});
    EXPECT_EQ(
        withoutWriters(text),
        std::string("ok: registry: \"Version\" is ") + kProductVersion +
            "\nok: registry: \"InstallDir\" is " + install() +
            "\nok: registry: \"UserDefinedDir\" is " + data.path() + "\nok: data folder: " +
            data.path() + "\nok: log folder: " + data.path() + "\\Logs\nok: log: " + data.path() +
            "\\Logs/Player.log does not exist yet\nok: configuration: " + conf() +
            " can be read, instances: 1\nok: lock: Global\\vtr_conf_nvo is free\n"
            "ok: lock: Global\\vtr_appc_Nougat64_nvo is free\nok: server: no server is running\n"
            "ok: versions: QX-Bridge.dll " +
            kProductVersion +
            ", Qt5Core.dll 5.15.8.0, Qt5Network.dll 5.15.8.0\n"
            "note: files: not signed: bridgectl.exe, QX-Bridge.dll, Qt5Core.dll, "
            "Qt5Network.dll; sign them before a policy of Windows refuses them\n");
    EXPECT_NE(text.find(", writable by "), std::string::npos);
    EXPECT_EQ(data.list(), (Lines{"Logs", "vantrel.conf"})) << "nothing is left behind";
    EXPECT_FALSE(data.has("Logs\\Player.log")) << "the library was started";
}

TEST_F(BridgectlDoctorTest, TheJsonHasAnObjectPerCheck) {
    const Json findings = Json::parse(output({"doctor", "--json"}));
    ASSERT_GT(findings.size(), 8u);
    EXPECT_EQ(findings[0].dump(),
              std::string(R"({"level":"ok","check":"registry","found":"\"Version\" is )") +
                  kProductVersion + R"(","todo":null})");
    EXPECT_EQ(findings.back()["level"], "note");
    data.write("vantrel.conf", "nonsense\n");
    const ChildResult broken = run({"doctor", "--json"});
    EXPECT_EQ(broken.status, 1u);
    EXPECT_EQ(Json::parse(broken.out)[6].dump(),
              R"({"level":"problem","check":"configuration",)"
              R"("found":"line 1: not key=\"value\": the library ignores the rest of the file",)"
              R"("todo":"correct or remove the line"})");
}

TEST_F(BridgectlDoctorTest, EachMissingRegistryValueIsNamed) {
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Vantrel_nvo");
    const std::string todo = "; reinstall the product, or set it: " + kValue;
    EXPECT_EQ(problems(),
              "registry: \"Version\" is missing: the launcher does not start" + todo +
                  "\"Version\"\nregistry: \"InstallDir\" is missing: front ends end when they "
                  "start a program" +
                  todo +
                  "\"InstallDir\"\nregistry: \"UserDefinedDir\" is missing: front ends do not "
                  "find their files" +
                  todo + "\"UserDefinedDir\"\n");
}

TEST_F(BridgectlDoctorTest, AValueOfAnotherTypeIsNamed) {
    const wchar_t text[] = L"5.2";
    setProductValue("Version", REG_EXPAND_SZ, text, sizeof text);
    EXPECT_EQ(problems(),
              "registry: \"Version\" is not a string (REG_SZ): the launcher does not start; "
              "reinstall the "
              "product, or set it: " +
                  kValue + "\"Version\"\n");
}

TEST_F(BridgectlDoctorTest, AnotherProductVersionIsNamed) {
    registry.set("Version", "1.0");
    EXPECT_EQ(problems(), std::string("registry: \"Version\" is 1.0, but this library is ") +
                              kProductVersion +
                              ": the launcher does not start; install the library and the product "
                              "in the same version\n");
}

TEST_F(BridgectlDoctorTest, AFolderThatIsNotAbsoluteIsNamed) {
    options.folder = data.path();  // the relative folders exist
    registry.set("InstallDir", "Logs\\");
    registry.set("UserDefinedDir", ".");
    const std::string todo = "; reinstall the product, or set it: " + kValue;
    EXPECT_EQ(problems(),
              "registry: \"InstallDir\" is not an absolute path (Logs\\): front ends end when they "
              "start a program" +
                  todo +
                  "\"InstallDir\"\nregistry: \"UserDefinedDir\" is not an absolute path (.): front "
                  "ends do not find their files" +
                  todo + "\"UserDefinedDir\"\n");
}

TEST_F(BridgectlDoctorTest, AnInstallFolderThatCannotWorkIsNamed) {
    std::string folder = install();
    folder.pop_back();
    registry.set("InstallDir", folder);
    EXPECT_EQ(problems(), "registry: \"InstallDir\" does not end in \"\\\": " + folder +
                              "; add the \"\\\": the library appends program names to it\n");
    registry.set("InstallDir", data.path() + "\\");
    EXPECT_EQ(problems(), "registry: \"InstallDir\" has no QX-Player.exe: " + data.path() +
                              "\\; reinstall the product\n");
}

TEST_F(BridgectlDoctorTest, AMissingLogFolderIsNamed) {
    ASSERT_TRUE(::RemoveDirectoryW(wideForTests(data / "Logs").c_str()));
    EXPECT_EQ(problems(), "log folder: " + data.path() +
                              "\\Logs does not exist; create it, or correct the registry: " +
                              kValue + "\"UserDefinedDir\"\n");
}

TEST_F(BridgectlDoctorTest, ALogThatCannotBeOpenedIsNamed) {
    data.makeFolder("Logs\\Player.log");
    const std::string text = problems();
    EXPECT_EQ(text.rfind("log: " + data.path() + "\\Logs/Player.log cannot be opened: ", 0), 0u)
        << text;
}

TEST_F(BridgectlDoctorTest, AHugeLogIsNamed) {
    const std::string path = data.write("Logs\\Player.log", "x");
    EXPECT_EQ(problems(), "");
    const HANDLE file = ::CreateFileW(wideForTests(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    ASSERT_NE(::SetFilePointer(file, 104'857'601, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    ASSERT_TRUE(::SetEndOfFile(file));
    ::CloseHandle(file);
    EXPECT_EQ(problems(), "log: " + data.path() +
                              "\\Logs/Player.log has 104857601 bytes; end all front ends: the next "
                              "one that starts rotates it\n");
}

TEST_F(BridgectlDoctorTest, AMissingConfigurationIsNamed) {
    ASSERT_TRUE(::DeleteFileW(wideForTests(conf()).c_str()));
    EXPECT_EQ(problems(), "configuration: " + conf() +
                              " cannot be read: no front end starts; reinstall the product, or "
                              "restore the file\n");
}

TEST_F(BridgectlDoctorTest, AConfigurationThatCannotBeReplacedIsNamed) {
    data.makeFolder("vantrel.conf-temp");
    ASSERT_TRUE(::SetFileAttributesW(wideForTests(conf()).c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(problems(), "configuration: " + conf() +
                              " is read-only: no commit succeeds; attrib -r \"" + conf() +
                              "\"\nconfiguration: " + conf() +
                              "-temp is a folder: no commit succeeds; remove it: commits create a "
                              "file of this name\n");
    ::SetFileAttributesW(wideForTests(conf()).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(BridgectlDoctorTest, FatalConfigurationsAreNamedAndNotFatal) {
    data.write("vantrel.conf",
               "vtr.instance.Pie64.ram=\"1\"\nvtr.feature.rooting=\"\x1B[31m\"\nvtr.x=\"1\"\n");
    EXPECT_EQ(
        problems(),
        "configuration: line 1: instance Pie64 has an unknown image: front ends end when they "
        "list the instances; bridgeadm remove-instance Pie64\n"
        "configuration: line 2: vtr.feature.rooting is not of type bool: \"\xEF\xBF\xBD[31m\": "
        "front "
        "ends end when they read it; bridgectl conf unset vtr.feature.rooting\n"
        "configuration: line 3: unknown key vtr.x: the library ignores the rest of the file; "
        "remove "
        "the line\n");
}

TEST_F(BridgectlDoctorTest, ALockThatIsHeldIsNamed) {
    const HANDLE held = ::CreateMutexW(nullptr, TRUE, L"Global\\vtr_appc_Nougat64_nvo");
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(
        problems(),
        "lock: Global\\vtr_appc_Nougat64_nvo was held for two seconds: front ends wait for it; "
        "end the product's program that hangs\n");
    ::ReleaseMutex(held);
    EXPECT_EQ(problems(), "");
    ::CloseHandle(held);
}

TEST_F(BridgectlDoctorTest, ARunningServerIsNamedWithItsProcess) {
    ChildProcess listener = listen({"events"});
    const std::string id = std::to_string(::GetProcessId(listener.handle()));
    EXPECT_NE(
        output({"doctor"})
            .find("\nok: server: vtr_LogCollector_bridge_nvo is served by bridgectl.exe (process " +
                  id + ")\n"),
        std::string::npos);
}

TEST_F(BridgectlDoctorTest, ADllInTwoFoldersIsNamed) {
    data.write("Qt5Core.dll", "another one");
    options.environment.push_back({"PATH", data.path()});
    const std::string program = productFile("");
    EXPECT_EQ(problems(), "files: Qt5Core.dll is in " + program.substr(0, program.size() - 1) +
                              " and in " + data.path() + "; remove one: Windows may load either\n");
}

TEST_F(BridgectlDoctorTest, DevelopmentFoldersReplaceTheRegistry) {
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kProductKey);
    EXPECT_NE(problems(), "");
    const std::string text =
        output({"--data-folder", data.path(), "--install-folder", standinProgram(""), "doctor"});
    EXPECT_NE(text.find("ok: registry: \"InstallDir\" is " + install() +
                        "\nok: registry: \"UserDefinedDir\" is " + data.path() + "\n"),
              std::string::npos)
        << text;
}

TEST_F(BridgectlDoctorTest, ItDoesNotStartWithoutItsLibrary) {
    const std::string alone = data / "bridgectl.exe";
    ASSERT_TRUE(::CopyFileW(wideForTests(program()).c_str(), wideForTests(alone).c_str(), TRUE));
    const ChildResult result = runChild(alone, {"doctor"}, options);
    EXPECT_EQ(result.status, 0xC0000135u) << "a DLL was not found";
    EXPECT_EQ(result.out, "");
}
