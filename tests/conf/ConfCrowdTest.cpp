// Several processes that commit to one file.
#include "ConfFixture.h"
#include "HookedFiles.h"
#include "conf/ConfText.h"
#include "support/Platform.h"
#include "support/Proof.h"
#include "support/Subprocess.h"
#include "support/Threads.h"
#include "xpl/Xfile.h"
#include "xpl/XmutexNamed.h"

namespace {

std::string keyOf(const std::string& instance, const std::string& name) {
    return "vtr.instance." + instance + "." + name;
}

// The names of the committers' instances.
Lines instanceNames(int count) {
    Lines names;
    for (int i = 0; i < count; ++i) names.push_back("P" + std::to_string(i));
    return names;
}

// Each instance has two counters, which are always equal.
void setCounters(ConfStore& store, const std::string& instance, int number) {
    confSetI32(store, keyOf(instance, "ram"), number);
    confSetI32(store, keyOf(instance, "cpus"), number);
}

// Stages the next number of both, and returns it.
int raiseCounters(ConfStore& store, const std::string& instance) {
    const int number = confGetI32(store, keyOf(instance, "ram")) + 1;
    setCounters(store, instance, number);
    return number;
}

// How often a committer waits until the auditor has seen its commit. Otherwise all committers could
// end before the auditor's first look.
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

// The fault of a state of the file. Empty if it is complete: it has every global key and, for each
// instance, all of its keys with equal counters. `entries` receives the file's entries.
std::string flawOf(const std::string& content, Entries& entries) {
    ConfTextReader reader(content);
    ConfEntry entry;
    for (ConfRead read; (read = reader.next(entry)) != ConfRead::End;) {
        if (read == ConfRead::Malformed) return "malformed: " + std::string(entry.line);
        entries[std::string(entry.key)] = entry.value;
    }
    if (content.empty() || content.back() != '\n') return "cut at its end";
    const std::size_t count = entries.size();  // operator[] adds missing keys below
    Entries needed = globalDefaults();
    for (const auto& [key, value] : entries) {
        if (key.rfind("vtr.instance.", 0) != 0) continue;
        const std::string instance = key.substr(13, key.find('.', 13) - 13);
        addInstanceDefaults(needed, instance);
        if (entries[keyOf(instance, "ram")] != entries[keyOf(instance, "cpus")]) {
            return "mixed: " + instance;
        }
    }
    return count == needed.size() ? "" : "keys are missing";
}

// Looks at successive states of the file: each is complete, and no counter falls.
class Auditor {
 public:
    Auditor(const std::string& path, const Lines& instances, int number) : path_(path) {
        EXPECT_EQ(mutex_.init(ownLockName(path)), 0);
        for (const std::string& instance : instances) numbers_[instance] = number;
    }

    void look() {
        const std::lock_guard<XmutexNamed> guard(mutex_);
        const std::string content = readBytes(path_);
        ++looks_;
        states_ += content == last_ ? 0 : 1;
        Entries entries;
        ASSERT_EQ(flawOf(content, entries), "") << "look " << looks_;
        for (auto& [instance, number] : numbers_) {
            const std::string& text = entries[keyOf(instance, "ram")];
            const int now = text.empty() ? 0 : std::stoi(text);
            ASSERT_GE(now, number) << instance << ", look " << looks_;
            number = now;
        }
        last_ = content;
    }

    // The number that each instance had at the last look.
    const std::map<std::string, int>& numbers() const { return numbers_; }

    int looks() const { return looks_; }
    int states() const { return states_; }

 private:
    const std::string path_;
    XmutexNamed mutex_;
    std::string last_;
    std::map<std::string, int> numbers_;
    int looks_ = 0;
    int states_ = 0;  // different from the previous one
};

// When the auditor sees a commit, writes the mark that its committer waits for.
class Marks {
 public:
    explicit Marks(int commits) : commits_(commits) {}

    const std::string& path() const { return folder_.path(); }

    void write(const std::map<std::string, int>& numbers) {
        for (const auto& [instance, number] : numbers) {
            for (int& marked = marked_[instance]; marked < number;) {
                if (isAudited(++marked, commits_)) {
                    writeBytes(markOf(path(), instance, marked), {});
                }
            }
        }
    }

 private:
    const int commits_;
    TempFolder folder_;
    std::map<std::string, int> marked_;
};

// A process that commits the numbers of an instance until it is killed.
class Committer {
 public:
    // `number` is in the file already.
    Committer(const std::string& path, const std::string& instance, int number)
        : path_(path), instance_(instance), confirmed_(number), process_(start()) {}

    // Kills it and reads its output. Each number that it committed was still in the file when it
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

    // Expects the file to have the last number that it printed, or the one that it would print
    // next.
    void expectNumber(const Auditor& auditor) const {
        const int number = auditor.numbers().at(instance_);
        EXPECT_GE(number, confirmed_) << instance_;
        EXPECT_LE(number, confirmed_ + 1) << instance_;
    }

    void restart(const Auditor& auditor) {
        confirmed_ = auditor.numbers().at(instance_);
        process_ = start();
    }

    // The number of temporary files of other processes that it found.
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

class ConfCrowdTest : public ConfTest {
 protected:
    void SetUp() override { given(""); }
};

}  // namespace

// Raises its own counters this many times and sets a shared key. Reads the counters from the file,
// so that a lost commit is not concealed by the next one. If there is a folder for the auditor's
// marks, waits for them.
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

TEST_F(ConfCrowdTest, EightProcessesThatCommitAtTheSameTimeLoseNothing) {
    const int commits = proofSize(60, 500);
    const Lines instances = instanceNames(8);
    ASSERT_EQ(confCommitToFile(store, path()), 0);
    Marks marks(commits);
    std::vector<ChildProcess> committers;
    for (const std::string& instance : instances) {
        committers.push_back(startSubprocess(
            "commitsManyTimes", {path(), instance, std::to_string(commits), marks.path()}));
    }
    Auditor auditor(path(), instances, 0);
    const auto audit = [&] {
        if (HasFatalFailure()) return;
        auditor.look();
        marks.write(auditor.numbers());
    };
    whileRepeating(1, audit, [&] {
        for (ChildProcess& committer : committers) EXPECT_EQ(committer.finish().status, 0u);
    });
    EXPECT_GE(auditor.states(), kAudits);
    std::printf("%d looks, %d states\n", auditor.looks(), auditor.states());
    ASSERT_EQ(confReload(store), 0);
    for (const std::string& instance : instances) {
        EXPECT_EQ(confGetI32(store, keyOf(instance, "ram")), commits);
    }
    const std::string shared = confGetString(store, "vtr.guid");
    EXPECT_EQ(shared.substr(2), "-" + std::to_string(commits)) << shared;
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
}

TEST_F(ConfCrowdTest, ProcessesThatCommitInTurnSeeEachOther) {
    const Lines instances = instanceNames(5);
    for (const std::string& instance : instances) {
        ASSERT_EQ(runSubprocess("commitsManyTimes", {path(), instance, "2"}).status, 0u);
        set("vtr.country", instance);
        ASSERT_EQ(confCommit(store), 0);
    }
    Auditor(path(), instances, 0).look();
    for (const std::string& instance : instances) {
        EXPECT_TRUE(hasLine(keyOf(instance, "ram") + "=\"2\""));
    }
    EXPECT_TRUE(hasLine("vtr.country=\"P4\""));
}

// Raises its own counters until it is killed. Prints each number once it is committed, and
// "leftover" when a commit finds the temporary file: another process was killed in the middle of
// one.
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

TEST_F(ConfCrowdTest, KillingCommittersAtRandomLosesNothingThatWasCommitted) {
    constexpr int kProcesses = 4;
    constexpr int kFirst = 4999;
    const int kills = proofSize(50, 1000);
    const Lines instances = instanceNames(kProcesses);
    for (const std::string& instance : instances) setCounters(store, instance, kFirst);
    ASSERT_EQ(confCommitToFile(store, path()), 0);
    Auditor auditor(path(), instances, kFirst);
    std::vector<Committer> committers;
    for (const std::string& instance : instances) {
        committers.emplace_back(path(), instance, kFirst);
    }
    std::mt19937 random(7);
    for (int i = 0; i < kills; ++i) {
        sleepMs(20 + static_cast<int>(random() % 60));
        Committer& victim = committers[random() % kProcesses];
        victim.kill();
        ASSERT_NO_FATAL_FAILURE(auditor.look()) << "kill " << i;
        victim.expectNumber(auditor);
        victim.restart(auditor);
        for (const std::string& name : folder.list()) {
            EXPECT_TRUE(name == "vantrel.conf" || name == "vantrel.conf-temp") << name;
        }
    }
    for (Committer& committer : committers) committer.kill();
    ASSERT_NO_FATAL_FAILURE(auditor.look());
    int leftovers = 0;
    for (const Committer& committer : committers) {
        committer.expectNumber(auditor);
        leftovers += committer.leftovers();
    }
    // One kill in twenty hits a commit. The short form may have none.
    EXPECT_GE(leftovers, proofSize(0, 10));
    EXPECT_LE(leftovers, kills + kProcesses);
    std::printf("%d of %d kills left a temporary file\n", leftovers, kills);
    set("vtr.guid", "after all");
    EXPECT_EQ(confCommit(store), 0);
    auditor.look();
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
}
