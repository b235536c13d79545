// Entry of every test binary: its tests, or one of its scenes.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "support/Platform.h"
#include "support/Scene.h"

namespace {

std::map<std::string, SceneFunction>& scenes() {
    static auto& all = *new std::map<std::string, SceneFunction>;
    return all;
}

SceneArguments withScene(const std::string& name, const SceneArguments& arguments) {
    SceneArguments all{"--scene", name};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
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
    return runChild(ownProgram(), withScene(name, arguments), options);
}

ChildProcess startScene(const std::string& name, const SceneArguments& arguments,
                        const ChildOptions& options) {
    return ChildProcess(ownProgram(), withScene(name, arguments), options);
}

int main(int argc, char** argv) {
    breakQuietly();
    const std::vector<std::string> arguments = utf8Arguments(argc, argv);
    if (arguments.size() > 2 && arguments[1] == "--scene") return playScene(arguments);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
