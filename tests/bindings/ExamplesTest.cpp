// The examples with the product's key in the registry, a data folder, and a stand-in that sends
// events.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "BindingHosts.h"
#include "support/ChildProcess.h"
#include "support/ProductRegistry.h"
#include "support/TempFolder.h"

namespace {

using Lines = std::vector<std::string>;

const Lines kInstances = {"instances [",
                          "    {",
                          "        \"cpu\": 4,",
                          "        \"deviceProfile\": \"\",",
                          "        \"displayName\": \"Größe 日本\",",
                          "        \"graphicsEngine\": \"aga\",",
                          "        \"graphicsRenderer\": \"gl\",",
                          "        \"imageName\": \"Nougat64\",",
                          "        \"instance\": \"Nougat64\",",
                          "        \"ram\": 4096",
                          "    }",
                          "]",
                          ""};

class ExamplesTest : public ::testing::Test {
 protected:
    ExamplesTest() {
        data.makeFolder("Logs");
        data.write("vantrel.conf",
                   "vtr.locale=\"fr-FR\"\n"
                   "vtr.instance.Nougat64.cpus=\"4\"\n"
                   "vtr.instance.Nougat64.display_name=\"Größe 日本\"\n"
                   "vtr.instance.Nougat64.graphics_engine=\"aga\"\n"
                   "vtr.instance.Nougat64.graphics_renderer=\"gl\"\n"
                   "vtr.instance.Nougat64.ram=\"4096\"\n");
        registry.set("UserDefinedDir", data.path());
        registry.set("InstallDir", "C:\\None\\");
    }

    // The example prints "listening" before its server's thread starts.
    static void waitUntilServed() {
        const std::wstring path = L"\\\\.\\pipe\\vtr_Helper_bridge_nvo";
        for (int i = 0; i < 2000 && !::WaitNamedPipeW(path.c_str(), 1000); ++i) ::Sleep(5);
    }

    void send(const std::vector<std::string>& words) const {
        std::vector<std::string> arguments{"--event"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        ChildOptions options;
        options.environment = {{"QX_STANDIN_CLIENTS", "Helper"},
                               {"QX_STANDIN_OUTPUT", data / "standin.txt"}};
        EXPECT_EQ(runChild(standinProgram("QX-Player.exe"), arguments, options).status, 0u);
    }

    // The lines of an example that waits for two events, which come as soon as it listens.
    Lines linesOf(const std::string& program, std::vector<std::string> arguments = {}) const {
        arguments.push_back("2");
        ChildProcess example(program, arguments);
        Lines lines;
        while (lines.size() < 20 && (lines.empty() || lines.back() != "listening")) {
            lines.push_back(readLine(example));
        }
        waitUntilServed();
        send({"app-installed", "Nougat64", "com.größe", "Main", "第二", "5", "1.0β", "i", "false"});
        send({"app-displayed", "Nougat64", "😀"});
        for (int i = 0; i < 3; ++i) lines.push_back(readLine(example));
        const ChildResult result = example.finish();
        EXPECT_EQ(result.status, 0u) << result.err;
        EXPECT_EQ(result.err, "");
        return lines;
    }

    static Lines expected(Lines lines) {
        lines.insert(lines.end(),
                     {"locale fr-FR", "listening", "installed Nougat64 com.größe: 第二 1.0β",
                      "displayed Nougat64 😀", "finished"});
        return lines;
    }

    TempFolder data;
    ProductRegistry registry;

 private:
    static std::string readLine(ChildProcess& example) {
        std::string line = example.readLine();
        if (!line.empty() && line.back() == '\r') line.pop_back();
        return line;
    }
};

}  // namespace

TEST_F(ExamplesTest, C) { EXPECT_EQ(linesOf(builtProgram("example_c.exe")), expected(kInstances)); }

TEST_F(ExamplesTest, COfAnotherCompilerAndRuntime) {
    EXPECT_EQ(linesOf(builtProgram("example_c_gcc.exe")), expected(kInstances));
}

TEST_F(ExamplesTest, Cpp) {
    EXPECT_EQ(linesOf(builtProgram("example_cpp.exe")), expected(kInstances));
}

TEST_F(ExamplesTest, Qt) {
    EXPECT_EQ(linesOf(builtProgram("example_qt.exe")), expected(kInstances));
}

TEST_F(ExamplesTest, Node) {
    EXPECT_EQ(linesOf(environment("QX_NODE"), {environment("QX_EXAMPLES") + "/node/main.js",
                                               builtProgram("QX-Bridge.dll")}),
              expected({"instance Nougat64 Größe 日本"}));
}

TEST_F(ExamplesTest, CSharp) {
    EXPECT_EQ(linesOf(environment("QX_DOTNET"), {builtProgram("example_csharp.dll")}),
              expected({"instance Nougat64 Größe 日本"}));
}

// The host of getting-started.md.
TEST_F(ExamplesTest, CSharpListingPrintsUtf8WhereTheOutputIsRedirected) {
    const ChildResult result = runChild(environment("QX_DOTNET"), {environment("QX_DOTNET_LISTING"),
                                                                   builtProgram("QX-Bridge.dll")});
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.err, "");
    std::string expected;
    for (const std::string& line : kInstances) expected += line + "\n";
    std::string printed = "instances " + result.out;
    printed.erase(std::remove(printed.begin(), printed.end(), '\r'), printed.end());
    EXPECT_EQ(printed, expected);
}

TEST_F(ExamplesTest, WithoutANumberTheyEndAtOnce) {
    for (const char* program : {"example_c.exe", "example_cpp.exe", "example_qt.exe"}) {
        const ChildResult result = runChild(builtProgram(program), {});
        EXPECT_EQ(result.status, 0u) << program << result.err;
        EXPECT_NE(result.out.find("listening"), std::string::npos) << program;
        EXPECT_NE(result.out.find("finished"), std::string::npos) << program;
    }
}

TEST_F(ExamplesTest, AFailedStartIsReported) {
    data.write("vantrel.conf", "no line of a configuration\n");
    for (const char* program : {"example_c.exe", "example_cpp.exe", "example_qt.exe"}) {
        const ChildResult result = runChild(builtProgram(program), {});
        EXPECT_EQ(result.status, 1u) << program;
        EXPECT_NE((result.out + result.err).find("the library does not start: -1"),
                  std::string::npos)
            << program << result.out << result.err;
    }
}
