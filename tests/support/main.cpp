// The entry point of every test binary: runs its tests, or one of its subprocesses.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <thread>
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

// Concurrent shards of a program write separate reports (./run debian13 --tests).
void reportBesideOthers() {
    const char* folder = std::getenv("QX_TEST_REPORTS");
    const char* entry = std::getenv("QX_TEST_ENTRY");
    if (folder == nullptr || entry == nullptr) return;
    ::testing::GTEST_FLAG(output) = std::string("xml:") + folder + entry + ".xml";
}

// Names a slow test on standard error, because a program that hangs is killed without a message.
class SlowTestNotice : public ::testing::EmptyTestEventListener {
 public:
    SlowTestNotice() : watcher_([this] { watch(); }) {}
    ~SlowTestNotice() override {
        change([this] { ended_ = true; });
        watcher_.join();
    }

 private:
    void OnTestStart(const ::testing::TestInfo& test) override {
        change([&] { running_ = std::string(test.test_suite_name()) + "." + test.name(); });
    }
    void OnTestEnd(const ::testing::TestInfo& /*test*/) override {
        change([this] { running_.clear(); });
    }

    template <typename Change>
    void change(Change change) {
        const std::lock_guard<std::mutex> guard(lock_);
        change();
        ++changes_;
        changed_.notify_all();
    }

    void watch() {
        std::unique_lock<std::mutex> guard(lock_);
        while (!ended_) {
            const int before = changes_;
            const bool isOther = changed_.wait_for(guard, std::chrono::minutes(1),
                                                   [&] { return changes_ != before; });
            if (isOther || running_.empty()) continue;
            std::fprintf(stderr, "[ SLOW     ] %s has run for a minute\n", running_.c_str());
        }
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::string running_;
    int changes_ = 0;
    bool ended_ = false;
    std::thread watcher_;  // last: it uses the others
};

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

std::string subprocessOutput(const std::string& name, const SubprocessArguments& arguments) {
    const ChildResult result = runSubprocess(name, arguments);
    EXPECT_EQ(result.status, 0u) << result.out << result.err;
    std::string text = result.out;
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

int main(int argc, char** argv) {
    breakQuietly();
    const std::vector<std::string> arguments = utf8Arguments(argc, argv);
    if (arguments.size() > 2 && arguments[1] == "--subprocess") return callSubprocess(arguments);
    reportBesideOthers();
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new SlowTestNotice);
    return RUN_ALL_TESTS();
}
