// Several threads in several processes write one log.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/LogCapture.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kModule{XlogTag::CONF, "kit"};
constexpr int kProcesses = 4;
constexpr int kThreads = 4;
constexpr int kLines = 1000;
constexpr std::size_t kTail = 200;

void logLines(const std::string& name) {
    for (int i = 0; i < kLines; ++i) {
        XLOG_I(kModule, "%s:%d %s", name.c_str(), i, std::string(kTail, name[0]).c_str());
    }
}

// Whether a line contains no part of another line.
bool isWhole(const std::string& line) {
    const std::string start = "I CONF  ";
    if (line.rfind(start, 0) != 0 || line.size() < start.size() + kTail) return false;
    return line.substr(line.size() - kTail) == std::string(kTail, line[start.size()]);
}

}  // namespace

SUBPROCESS(logsOnFourThreads) {
    if (xlogLibInit(nullptr, arguments[0]) != XERR_SUCCESS) return 1;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back(logLines, arguments[1] + std::to_string(i));
    }
    for (std::thread& thread : threads) thread.join();
    return 0;
}

TEST(LogTest, FourProcessesOfFourThreadsLoseAndMixNoLine) {
    const TempFolder folder;
    std::vector<ChildProcess> children;
    for (const char* name : {"a", "b", "c", "d"}) {
        children.push_back(startSubprocess("logsOnFourThreads", {folder / "log", name}));
    }
    for (ChildProcess& child : children) EXPECT_EQ(child.finish().status, 0u);
    const Lines lines = logMessages(folder.read("log"));
    const std::set<std::string> different(lines.begin(), lines.end());
    std::size_t broken = 0;
    for (const std::string& line : lines) broken += isWhole(line) ? 0 : 1;
    std::printf("[figure] lines %zu\n[figure] broken %zu\n", lines.size(), broken);
    EXPECT_EQ(lines.size(), std::size_t{kProcesses * kThreads * kLines});
    EXPECT_EQ(different.size(), lines.size());
    EXPECT_EQ(broken, 0u);
}
