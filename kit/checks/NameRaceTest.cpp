// Several processes open a server with the same name at the same moment.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "QtThread.h"
#include "ipc/IpcLocalServer.h"
#include "support/Platform.h"
#include "support/Proof.h"
#include "support/Subprocess.h"
#include "support/WindowsForTests.h"

namespace {

// A named event of Windows, shared by processes.
class NamedEvent {
 public:
    explicit NamedEvent(const std::string& name)
        : handle_(::CreateEventW(nullptr, /*bManualReset=*/TRUE, FALSE,
                                 wideForTests("Local\\" + name).c_str())) {}
    ~NamedEvent() { ::CloseHandle(handle_); }
    NamedEvent(const NamedEvent&) = delete;
    NamedEvent& operator=(const NamedEvent&) = delete;

    void set() { ::SetEvent(handle_); }
    bool wait() { return ::WaitForSingleObject(handle_, 60'000) == WAIT_OBJECT_0; }

 private:
    HANDLE handle_;
};

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

// Opens a server when the round begins, and keeps it until the round is over.
void playRound(const std::string& name) {
    NamedEvent begin(name + "-begin");
    NamedEvent over(name + "-over");
    say("ready");
    if (!begin.wait()) return say("late");
    onQtThread([&] {
        IpcLocalServer server;
        say(server.open(name).has_value() ? "refused" : "serves");
        over.wait();
    });
}

constexpr int kProcesses = 4;

}  // namespace

SUBPROCESS(wantsNames) {
    const int rounds = std::stoi(arguments[1]);
    for (int i = 0; i < rounds; ++i) playRound(arguments[0] + std::to_string(i));
    return 0;
}

TEST(NameRaceTest, OneOfTheProcessesServesTheName) {
    const int rounds = proofSize(200, 2000);
    const std::string name = "vtr_test_race_" + std::to_string(ownProcessId()) + "_";
    std::vector<ChildProcess> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(startSubprocess("wantsNames", {name, std::to_string(rounds)}));
    }
    int wrong = 0;
    for (int i = 0; i < rounds; ++i) {
        NamedEvent begin(name + std::to_string(i) + "-begin");
        NamedEvent over(name + std::to_string(i) + "-over");
        for (ChildProcess& child : children) ASSERT_EQ(child.readLine(), "ready");
        begin.set();
        int serving = 0;
        for (ChildProcess& child : children) serving += child.readLine() == "serves" ? 1 : 0;
        over.set();
        wrong += serving == 1 ? 0 : 1;
    }
    for (ChildProcess& child : children) EXPECT_EQ(child.finish().status, 0u);
    EXPECT_EQ(wrong, 0) << "rounds with none or several that serve";
    std::printf("[figure] rounds %d of %d processes\n", rounds, kProcesses);
}
