// Entry of every test binary: its tests, or one of its scenes.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>

#include "support/Scene.h"
#include "support/WindowsForTests.h"

// Last: it needs <windows.h>.
#include <shellapi.h>

namespace {

std::map<std::string, SceneFunction>& scenes() {
    static auto& all = *new std::map<std::string, SceneFunction>;
    return all;
}

std::string ownPath() {
    wchar_t self[MAX_PATH];
    const DWORD length = ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::string path;
    for (DWORD i = 0; i < length; ++i) path += static_cast<char>(self[i]);
    return path;
}

SceneArguments withScene(const std::string& name, const SceneArguments& arguments) {
    SceneArguments all{"--scene", name};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

// The arguments as UTF-8, which argv is not.
std::vector<std::string> utf8Arguments() {
    int count = 0;
    LPWSTR* const wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) {
        char text[4096];
        ::WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, text, sizeof text, nullptr, nullptr);
        arguments.emplace_back(text);
    }
    ::LocalFree(wide);
    return arguments;
}

int playScene(const std::vector<std::string>& arguments) {
    const auto found = scenes().find(arguments[2]);
    if (found == scenes().end()) {
        std::fprintf(stderr, "no scene named %s\n", arguments[2].c_str());
        return 98;
    }
    return found->second({arguments.begin() + 3, arguments.end()});
}

}  // namespace

SceneEntry::SceneEntry(const char* name, SceneFunction function) { scenes()[name] = function; }

ChildResult runScene(const std::string& name, const SceneArguments& arguments,
                     const ChildOptions& options) {
    return runChild(ownPath(), withScene(name, arguments), options);
}

ChildProcess startScene(const std::string& name, const SceneArguments& arguments,
                        const ChildOptions& options) {
    return ChildProcess(ownPath(), withScene(name, arguments), options);
}

int main(int argc, char** argv) {
    // On Windows a fatal break must end a process, not open a crash dialog; children inherit this.
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS);
    const std::vector<std::string> arguments = utf8Arguments();
    if (arguments.size() > 2 && arguments[1] == "--scene") return playScene(arguments);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
