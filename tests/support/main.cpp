// Entry of every test binary: its tests, or one of its subprocesses.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "support/Platform.h"
#include "support/Subprocess.h"

namespace {

std::map<std::string, SubprocessFunction>& subprocesses() {
    static auto& all = *new std::map<std::string, SubprocessFunction>;
    return all;
}

SubprocessArguments withSubprocess(const std::string& name, const SubprocessArguments& arguments) {
    SubprocessArguments all{"--subprocess", name};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

int callSubprocess(const std::vector<std::string>& arguments) {
    const auto found = subprocesses().find(arguments[2]);
    if (found == subprocesses().end()) {
        std::fprintf(stderr, "no subprocess named %s\n", arguments[2].c_str());
        return 98;
    }
    return found->second({arguments.begin() + 3, arguments.end()});
}

// Parts of one program that run at the same time each write a report of their own
// (./run debian13 --tests).
void reportBesideOthers() {
    const char* folder = std::getenv("QX_TEST_REPORTS");
    const char* entry = std::getenv("QX_TEST_ENTRY");
    if (folder == nullptr || entry == nullptr) return;
    ::testing::GTEST_FLAG(output) = std::string("xml:") + folder + entry + ".xml";
}

}  // namespace

SubprocessEntry::SubprocessEntry(const char* name, SubprocessFunction function) {
    subprocesses()[name] = function;
}

ChildResult runSubprocess(const std::string& name, const SubprocessArguments& arguments,
                          const ChildOptions& options) {
    return runChild(ownProgram(), withSubprocess(name, arguments), options);
}

ChildProcess startSubprocess(const std::string& name, const SubprocessArguments& arguments,
                             const ChildOptions& options) {
    return ChildProcess(ownProgram(), withSubprocess(name, arguments), options);
}

int main(int argc, char** argv) {
    breakQuietly();
    const std::vector<std::string> arguments = utf8Arguments(argc, argv);
    if (arguments.size() > 2 && arguments[1] == "--subprocess") return callSubprocess(arguments);
    reportBesideOthers();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
