// Microsoft's compiler, from PATH or from Visual Studio: the header, a host with each C runtime,
// and the library itself.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/ChildProcess.h"
#include "support/Platform.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"

namespace fs = std::filesystem;

namespace {

std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

bool isOnPath(const wchar_t* program) {
    wchar_t path[MAX_PATH];
    return ::SearchPathW(nullptr, program, L".exe", MAX_PATH, path, nullptr) != 0;
}

bool exists(const std::string& path) { return fs::exists(systemPath(path)); }

// The kit's folder, with a separator at its end.
std::string kit() {
    const std::string products = productFile("");
    return products.substr(0, products.size() - std::string_view("bin\\").size());
}

// The set-up script of the newest Visual Studio; empty if there is none.
std::string setUpOfVisualStudio() {
    const std::string finder =
        environment("ProgramFiles(x86)") + R"(\Microsoft Visual Studio\Installer\vswhere.exe)";
    if (!exists(finder)) return {};
    std::string folder = runChild(finder, {"-latest", "-products", "*", "-requires",
                                           "Microsoft.VisualStudio.Component.VC.Tools.x86.x64",
                                           "-property", "installationPath", "-utf8"})
                             .out;
    folder.erase(folder.find_last_not_of("\r\n") + 1);
    const std::string script = folder + R"(\VC\Auxiliary\Build\vcvars64.bat)";
    return exists(script) ? script : std::string();
}

class CompilerTest : public ::testing::Test {
 protected:
    void SetUp() override {
        if (isOnPath(L"cl")) return;
        const std::string script = setUpOfVisualStudio();
        if (script.empty()) GTEST_SKIP() << "needs cl.exe in PATH, or Visual Studio with C++";
        setUp_ = "call \"" + script + "\" >nul\r\n";
    }

    // Runs commands in the folder with the compiler in PATH. Prints their output.
    void run(const std::vector<std::string>& commands,
             std::chrono::seconds limit = std::chrono::seconds(120)) const {
        std::string script = "@echo off\r\n" + setUp_;
        for (const std::string& command : commands) {
            script += command + "\r\nif errorlevel 1 exit /b 1\r\n";
        }
        ChildOptions options;
        options.folder = folder.path();
        options.limit = limit;
        const ChildResult result = runChild(environment("ComSpec"),
                                            {"/d", "/c", folder.write("run.cmd", script)}, options);
        std::printf("%s%s", result.out.c_str(), result.err.c_str());
        EXPECT_EQ(result.status, 0u);
    }

    // Compiles a source of the kit to host.exe.
    void compile(const std::string& options, const std::string& source) const {
        run({"cl /nologo /W4 /WX " + options + " \"/I" + kit() + "include\" \"" + kit() +
             "bindings\\" + source + "\" /Fe:host.exe /link \"" + kit() + "lib\\QX-Bridge.lib\""});
        EXPECT_TRUE(folder.has("host.exe"));
    }

    // Runs host.exe with the DLLs of a folder.
    void runHost(const std::string& products) const {
        ChildOptions options;
        options.environment = {{"PATH", products + ";" + environment("PATH")}};
        const ChildResult result = runChild(folder / "host.exe", {folder / "log"}, options);
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.out, "tr-TR\r\n");
    }

    TempFolder folder;

 private:
    std::string setUp_;
};

class RuntimeTest : public CompilerTest, public ::testing::WithParamInterface<const char*> {};

std::string nameOf(const ::testing::TestParamInfo<const char*>& option) { return option.param; }

}  // namespace

TEST_F(CompilerTest, TheHeaderAndTheImportLibraryMakeAHost) { compile("", "host.c"); }

TEST_F(CompilerTest, TheWrapperMakesAHost) { compile("/std:c++17 /EHsc", "host.cpp"); }

TEST_P(RuntimeTest, AHostWithThisRuntimeFreesTheLibrarysMemory) {
    compile(std::string("/") + GetParam(), "runtime_host.c");
    runHost(productFile(""));
}

INSTANTIATE_TEST_SUITE_P(Each, RuntimeTest, ::testing::Values("MD", "MDd", "MT", "MTd"), nameOf);

// The built DLL must serve a host that was linked with the package's import library.
TEST_F(CompilerTest, ThePresetBuildsTheLibrary) {
    const std::string qt = environment("QX_QT");
    if (qt.empty()) {
        GTEST_SKIP() << "needs QX_QT, the folder of Qt 5.15 for this compiler, as in "
                        "docs/contributing/structure.md";
    }
    fs::copy(systemPath(kit() + "source"), systemPath(folder / "source"),
             fs::copy_options::recursive);
    run({"set QX_HEADERS=" + kit() + "headers", "cd source", "cmake --preset msvc",
         "cmake --build --preset msvc"},
        std::chrono::minutes(50));
    const std::string built = R"(source\build\msvc\bin\)";
    ASSERT_TRUE(folder.has(built + "QX-Bridge.dll"));
    compile("/MD", "runtime_host.c");
    runHost(folder / built + ";" + qt + "\\bin");
}
