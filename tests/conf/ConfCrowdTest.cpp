// Several processes that commit to one file.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <random>
#include <thread>

#include "ConfFixture.h"
#include "conf/ConfText.h"
#include "support/Platform.h"
#include "support/Proof.h"
#include "support/Scene.h"
#include "xpl/XmutexNamed.h"

namespace {

using ConfCrowdTest = ConfTest;

constexpr const char* kFileLock = "Global\\vtr_conf_nvo";

}  // namespace

// Commits own counters and a shared key, as often as told.
SCENE(commitsManyTimes) {
    LogCapture quiet;
    ConfStore& store = confStore();
    const std::string& own = arguments[1];
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    const int count = std::stoi(arguments[2]);
    for (int i = 1; i <= count; ++i) {
        confSetI32(store, "vtr.instance." + own + ".ram", i);
        confSetI32(store, "vtr.instance." + own + ".cpus", i);
        confSetString(store, "vtr.guid", own + "-" + std::to_string(i));
        if (confCommit(store) != 0) return 2;
    }
    return 0;
}

namespace {

// What is wrong with a state of the file; empty when it is complete: every global key and, for each
// instance, all thirty of its keys with a matching pair of counters.
std::string flawOf(const std::string& content) {
    Entries entries;
    ConfTextReader reader(content);
    ConfEntry entry;
    for (ConfRead read; (read = reader.next(entry)) != ConfRead::End;) {
        if (read == ConfRead::Malformed) return "malformed: " + std::string(entry.line);
        entries[std::string(entry.key)] = entry.value;
    }
    if (content.empty() || content.back() != '\n') return "cut at its end";
    Entries needed = globalDefaults();
    for (const auto& [key, value] : entries) {
        if (key.rfind("vtr.instance.", 0) != 0) continue;
        const std::string instance = key.substr(13, key.find('.', 13) - 13);
        addInstanceDefaults(needed, instance);
        const std::string prefix = "vtr.instance." + instance + ".";
        if (entries[prefix + "ram"] != entries[prefix + "cpus"]) return "mixed: " + instance;
    }
    if (entries.size() != needed.size()) return "keys are missing";
    return {};
}

}  // namespace

TEST_F(ConfCrowdTest, EightProcessesThatCommitAtTheSameTimeLoseNothing) {
    constexpr int kProcesses = 8;
    const int commits = proofSize(60, 500);
    ASSERT_EQ(init(""), 0);
    ASSERT_EQ(confCommitToFile(store, path()), 0);
    std::vector<ChildProcess> committers;
    for (int p = 0; p < kProcesses; ++p) {
        committers.push_back(startScene(
            "commitsManyTimes", {path(), "P" + std::to_string(p), std::to_string(commits)}));
    }
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(kFileLock), 0);
    std::atomic<bool> finished{false};
    int states = 0;
    std::thread auditor([&] {
        while (!finished) {
            const std::lock_guard<XmutexNamed> guard(mutex);
            ASSERT_EQ(flawOf(folder.read("vantrel.conf")), "");
            ++states;
        }
    });
    for (ChildProcess& committer : committers) EXPECT_EQ(committer.finish().status, 0u);
    finished = true;
    auditor.join();
    EXPECT_GT(states, 1) << "the auditor looked while others wrote";
    ASSERT_EQ(confReload(store), 0);
    for (int p = 0; p < kProcesses; ++p) {
        EXPECT_EQ(confGetI32(store, "vtr.instance.P" + std::to_string(p) + ".ram"), commits);
    }
    const std::string shared = confGetString(store, "vtr.guid");
    EXPECT_EQ(shared.substr(2), "-" + std::to_string(commits)) << shared;
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
}

TEST_F(ConfCrowdTest, ProcessesThatCommitInTurnSeeEachOther) {
    ASSERT_EQ(init(""), 0);
    for (int i = 1; i <= 5; ++i) {
        const std::string own = "P" + std::to_string(i);
        ASSERT_EQ(runScene("commitsManyTimes", {path(), own, "2"}).status, 0u);
        confSetI32(store, "vtr.next_vm_id", i);
        ASSERT_EQ(confCommit(store), 0);
    }
    const std::string text = folder.read("vantrel.conf");
    EXPECT_EQ(flawOf(text), "");
    for (int i = 1; i <= 5; ++i) {
        EXPECT_NE(text.find("vtr.instance.P" + std::to_string(i) + ".ram=\"2\"\n"),
                  std::string::npos);
    }
    EXPECT_NE(text.find("vtr.next_vm_id=\"5\"\n"), std::string::npos);
}

// Commits until it is killed, and says each number when it has been committed.
SCENE(commitsUntilKilled) {
    LogCapture quiet;
    ConfStore& store = confStore();
    const std::string prefix = "vtr.instance." + arguments[1] + ".";
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    for (int i = std::stoi(arguments[2]);; ++i) {
        confSetI32(store, prefix + "ram", i);
        confSetI32(store, prefix + "cpus", i);
        if (confCommit(store) != 0) return 2;
        std::printf("%d\n", i);
        std::fflush(stdout);
    }
}

namespace {

// A process that commits numbers of its own until it is killed.
class Committer {
 public:
    Committer(const std::string& path, const std::string& instance, int first)
        : path_(path), instance_(instance), confirmed_(first - 1), process_(start(first)) {}

    // Kills it, and reads what it had said.
    void kill() {
        process_->kill();
        const ChildResult result = process_->finish();
        EXPECT_EQ(result.status, 99u) << result.out;
        const std::size_t end = result.out.rfind('\n');
        if (end == std::string::npos) return;
        const std::size_t before = result.out.rfind('\n', end - 1);
        confirmed_ = std::stoi(result.out.substr(before == std::string::npos ? 0 : before + 1));
    }

    // Its number in the file: the last that it said, or the one that it was about to say.
    void expectNumber(int number) const {
        EXPECT_GE(number, confirmed_) << instance_;
        EXPECT_LE(number, confirmed_ + 1) << instance_;
    }

    void restart(int number) {
        confirmed_ = number;
        process_ = start(number + 1);
    }

    std::string key() const { return "vtr.instance." + instance_ + ".ram"; }

 private:
    std::unique_ptr<ChildProcess> start(int first) const {
        return std::make_unique<ChildProcess>(
            startScene("commitsUntilKilled", {path_, instance_, std::to_string(first)}));
    }

    std::string path_;
    std::string instance_;
    int confirmed_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace

TEST_F(ConfCrowdTest, KillingCommittersAtRandomLosesNothingThatWasCommitted) {
    constexpr int kProcesses = 4;
    const int kills = proofSize(50, 1000);
    ASSERT_EQ(init(""), 0);
    for (int p = 0; p < kProcesses; ++p) confAddInstance(store, "P" + std::to_string(p));
    ASSERT_EQ(confCommitToFile(store, path()), 0);
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(kFileLock), 0);
    std::vector<Committer> committers;
    for (int p = 0; p < kProcesses; ++p) {
        committers.emplace_back(path(), "P" + std::to_string(p), 5000);
    }
    std::mt19937 random(7);
    for (int i = 0; i < kills; ++i) {
        sleepMs(20 + static_cast<int>(random() % 60));
        Committer& victim = committers[random() % kProcesses];
        victim.kill();
        std::string text;
        {
            const std::lock_guard<XmutexNamed> guard(mutex);
            text = folder.read("vantrel.conf");
        }
        ASSERT_EQ(flawOf(text), "") << "kill " << i;
        ASSERT_EQ(confReload(store), 0);
        const int number = confGetI32(store, victim.key());
        if (number >= 5000) victim.expectNumber(number);
        victim.restart(std::max(number, 4999));
        for (const std::string& name : folder.list()) {
            EXPECT_TRUE(name == "vantrel.conf" || name == "vantrel.conf-temp") << name;
        }
    }
    for (Committer& committer : committers) committer.kill();
    confSetString(store, "vtr.guid", "after all");
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(flawOf(folder.read("vantrel.conf")), "");
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
}
