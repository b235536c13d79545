// Several processes that commit to one file.
#include "ConfFixture.h"
#include "HookedFiles.h"
#include "conf/ConfText.h"
#include "support/Platform.h"
#include "support/Proof.h"
#include "support/Subprocess.h"
#include "xpl/Xfile.h"
#include "xpl/XmutexNamed.h"

namespace {

using ConfCrowdTest = ConfTest;

std::string counterOf(const std::string& instance) { return "vtr.instance." + instance + ".ram"; }

void setCounters(ConfStore& store, const std::string& instance, int number) {
    confSetI32(store, counterOf(instance), number);
    confSetI32(store, "vtr.instance." + instance + ".cpus", number);
}

// Stages the next number of both, and gives it.
int raiseCounters(ConfStore& store, const std::string& instance) {
    const int number = confGetI32(store, counterOf(instance)) + 1;
    setCounters(store, instance, number);
    return number;
}

// How often a committer waits until the auditor has seen its commit. Otherwise a quick crowd would
// be done before the auditor's first look.
constexpr int kAudits = 10;

bool isAudited(int commit, int commits) {
    return commit * kAudits / commits > (commit - 1) * kAudits / commits;
}

std::string markOf(const std::string& folder, const std::string& instance, int commit) {
    return folder + "\\" + instance + "-" + std::to_string(commit);
}

void waitForMark(const std::string& path) {
    while (xfileExists(path) != XERR_SUCCESS) sleepMs(1);
}

}  // namespace

// Raises own counters by one, as often as told, and sets a shared key. What the counters were comes
// from the file: a commit that was lost stays lost. With a folder for the auditor's marks, waits
// for these.
SUBPROCESS(commitsManyTimes) {
    LogCapture quiet;
    ConfStore& store = confStore();
    store.fileLockName = ownLockName(arguments[0]);
    const std::string& own = arguments[1];
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    const int count = std::stoi(arguments[2]);
    for (int i = 1; i <= count; ++i) {
        if (confReload(store) != 0) return 3;
        raiseCounters(store, own);
        confSetString(store, "vtr.guid", own + "-" + std::to_string(i));
        if (confCommit(store) != 0) return 2;
        if (arguments.size() > 3 && isAudited(i, count)) waitForMark(markOf(arguments[3], own, i));
    }
    return 0;
}

namespace {

// What is wrong with a state of the file; empty when it is complete: every global key and, for each
// instance, all thirty of its keys with a matching pair of counters. `entries` is what it holds.
std::string flawOf(const std::string& content, Entries& entries) {
    ConfTextReader reader(content);
    ConfEntry entry;
    for (ConfRead read; (read = reader.next(entry)) != ConfRead::End;) {
        if (read == ConfRead::Malformed) return "malformed: " + std::string(entry.line);
        entries[std::string(entry.key)] = entry.value;
    }
    if (content.empty() || content.back() != '\n') return "cut at its end";
    const std::size_t count = entries.size();  // looking for a missing key adds it
    Entries needed = globalDefaults();
    for (const auto& [key, value] : entries) {
        if (key.rfind("vtr.instance.", 0) != 0) continue;
        const std::string instance = key.substr(13, key.find('.', 13) - 13);
        addInstanceDefaults(needed, instance);
        const std::string prefix = "vtr.instance." + instance + ".";
        if (entries[prefix + "ram"] != entries[prefix + "cpus"]) return "mixed: " + instance;
    }
    if (count != needed.size()) return "keys are missing";
    return {};
}

std::string flawOf(const std::string& content) {
    Entries entries;
    return flawOf(content, entries);
}

// Looks at one state of the file after the other: each is whole, and no counter falls.
class Auditor {
 public:
    // Under the lock.
    void look(const std::string& content) {
        ++looks_;
        states_ += content == last_ ? 0 : 1;
        Entries entries;
        ASSERT_EQ(flawOf(content, entries), "") << "look " << looks_;
        for (auto& [instance, number] : numbers_) {
            const std::string& text = entries[counterOf(instance)];
            const int now = text.empty() ? 0 : std::stoi(text);
            ASSERT_GE(now, number) << instance << ", look " << looks_;
            number = now;
        }
        last_ = content;
    }

    void follow(const std::string& instance, int number) { numbers_[instance] = number; }
    int numberOf(const std::string& instance) const { return numbers_.at(instance); }

    int looks() const { return looks_; }
    int states() const { return states_; }

 private:
    std::string last_;
    std::map<std::string, int> numbers_;
    int looks_ = 0;
    int states_ = 0;  // that differed from the one before
};

}  // namespace

TEST_F(ConfCrowdTest, EightProcessesThatCommitAtTheSameTimeLoseNothing) {
    constexpr int kProcesses = 8;
    const int commits = proofSize(60, 500);
    given("");
    ASSERT_EQ(confCommitToFile(store, path()), 0);
    const TempFolder marks;
    std::vector<ChildProcess> committers;
    for (int p = 0; p < kProcesses; ++p) {
        committers.push_back(startSubprocess(
            "commitsManyTimes",
            {path(), "P" + std::to_string(p), std::to_string(commits), marks.path()}));
    }
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(ownLockName(path())), 0);
    std::atomic<bool> finished{false};
    Auditor auditor;
    for (int p = 0; p < kProcesses; ++p) auditor.follow("P" + std::to_string(p), 0);
    std::thread looker([&] {
        std::map<std::string, int> marked;
        while (!finished && !HasFatalFailure()) {
            {
                const std::lock_guard<XmutexNamed> guard(mutex);
                auditor.look(file());
            }
            for (int p = 0; p < kProcesses; ++p) {
                const std::string instance = "P" + std::to_string(p);
                for (int& seen = marked[instance]; seen < auditor.numberOf(instance);) {
                    if (isAudited(++seen, commits))
                        writeBytes(markOf(marks.path(), instance, seen), {});
                }
            }
        }
    });
    for (ChildProcess& committer : committers) EXPECT_EQ(committer.finish().status, 0u);
    finished = true;
    looker.join();
    EXPECT_GE(auditor.states(), kAudits);
    RecordProperty("looks", auditor.looks());
    RecordProperty("states", auditor.states());
    std::printf("%d looks, %d states\n", auditor.looks(), auditor.states());
    ASSERT_EQ(confReload(store), 0);
    for (int p = 0; p < kProcesses; ++p) {
        EXPECT_EQ(confGetI32(store, "vtr.instance.P" + std::to_string(p) + ".ram"), commits);
    }
    const std::string shared = confGetString(store, "vtr.guid");
    EXPECT_EQ(shared.substr(2), "-" + std::to_string(commits)) << shared;
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
}

TEST_F(ConfCrowdTest, ProcessesThatCommitInTurnSeeEachOther) {
    given("");
    for (int i = 1; i <= 5; ++i) {
        const std::string own = "P" + std::to_string(i);
        ASSERT_EQ(runSubprocess("commitsManyTimes", {path(), own, "2"}).status, 0u);
        set("vtr.next_vm_id", i);
        ASSERT_EQ(confCommit(store), 0);
    }
    const std::string text = file();
    EXPECT_EQ(flawOf(text), "");
    for (int i = 1; i <= 5; ++i) {
        EXPECT_NE(text.find("vtr.instance.P" + std::to_string(i) + ".ram=\"2\"\n"),
                  std::string::npos);
    }
    EXPECT_NE(text.find("vtr.next_vm_id=\"5\"\n"), std::string::npos);
}

// Raises own counters until it is killed, and says each number when it has been committed; and when
// a commit finds the temporary file there already: another process was killed in the middle of one.
SUBPROCESS(commitsUntilKilled) {
    LogCapture quiet;
    ConfCatalogue catalogue = confProductCatalogue();
    HookedFiles files([&arguments](HookedFiles::Step at) {
        const bool creates = at == HookedFiles::Step::Create;
        if (creates && xfileExists(arguments[0] + "-temp") == XERR_SUCCESS) std::puts("leftover");
        return XERR_SUCCESS;
    });
    ConfStore store(catalogue, files);
    store.fileLockName = ownLockName(arguments[0]);
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    for (;;) {
        if (confReload(store) != 0) return 3;
        const int number = raiseCounters(store, arguments[1]);
        if (confCommit(store) != 0) return 2;
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}

namespace {

// A process that commits numbers of its own until it is killed.
class Committer {
 public:
    // `number` is in the file already.
    Committer(const std::string& path, const std::string& instance, int number)
        : path_(path), instance_(instance), confirmed_(number), process_(start()) {}

    // Kills it, and reads what it had said: each number that it committed was still there when it
    // went on to the next.
    void kill() {
        process_->kill();
        const ChildResult result = process_->finish();
        EXPECT_EQ(result.status, 99u) << result.out;
        std::istringstream out(result.out.substr(0, result.out.rfind('\n') + 1));
        for (std::string word; out >> word;) {
            if (word == "leftover") {
                ++leftovers_;
            } else {
                EXPECT_EQ(word, std::to_string(++confirmed_)) << instance_;
            }
        }
    }

    // Its number in the file: the last that it said, or the one that it was about to say.
    void expectNumber(int number) const {
        EXPECT_GE(number, confirmed_) << instance_;
        EXPECT_LE(number, confirmed_ + 1) << instance_;
    }

    void restart(int number) {
        confirmed_ = number;
        process_ = start();
    }

    const std::string& instance() const { return instance_; }

    // How many temporary files of others it found.
    int leftovers() const { return leftovers_; }

 private:
    std::unique_ptr<ChildProcess> start() const {
        return std::make_unique<ChildProcess>(
            startSubprocess("commitsUntilKilled", {path_, instance_}));
    }

    std::string path_;
    std::string instance_;
    int confirmed_;
    int leftovers_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace

TEST_F(ConfCrowdTest, KillingCommittersAtRandomLosesNothingThatWasCommitted) {
    constexpr int kProcesses = 4;
    constexpr int kFirst = 4999;
    const int kills = proofSize(50, 1000);
    given("");
    std::vector<std::string> names;
    Auditor auditor;
    for (int p = 0; p < kProcesses; ++p) {
        names.push_back("P" + std::to_string(p));
        setCounters(store, names.back(), kFirst);
        auditor.follow(names.back(), kFirst);
    }
    ASSERT_EQ(confCommitToFile(store, path()), 0);
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(ownLockName(path())), 0);
    std::vector<Committer> committers;
    for (const std::string& name : names) committers.emplace_back(path(), name, kFirst);
    std::mt19937 random(7);
    for (int i = 0; i < kills; ++i) {
        sleepMs(20 + static_cast<int>(random() % 60));
        Committer& victim = committers[random() % kProcesses];
        victim.kill();
        {
            const std::lock_guard<XmutexNamed> guard(mutex);
            ASSERT_NO_FATAL_FAILURE(auditor.look(file())) << "kill " << i;
        }
        const int number = auditor.numberOf(victim.instance());
        victim.expectNumber(number);
        victim.restart(number);
        for (const std::string& name : folder.list()) {
            EXPECT_TRUE(name == "vantrel.conf" || name == "vantrel.conf-temp") << name;
        }
    }
    int leftovers = 0;
    for (Committer& committer : committers) {
        committer.kill();
        leftovers += committer.leftovers();
    }
    ASSERT_NO_FATAL_FAILURE(auditor.look(file()));
    for (const Committer& committer : committers) {
        committer.expectNumber(auditor.numberOf(committer.instance()));
    }
    // One kill in twenty meets a commit: too few for the short form to count on.
    EXPECT_GE(leftovers, proofSize(0, 10));
    EXPECT_LE(leftovers, kills + kProcesses);
    RecordProperty("leftovers", leftovers);
    std::printf("%d of %d kills left a temporary file\n", leftovers, kills);
    set("vtr.guid", "after all");
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(flawOf(file()), "");
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
}
