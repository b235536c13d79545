// Commits in which a system call fails, or is the process's last: the file is the old one or the
// new one, and the next commit of any process succeeds.
#include "PowerFailure.h"
#include "SystemCalls.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/Platform.h"
#include "support/Proof.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

namespace {

using Faults = std::vector<FaultAt>;

constexpr std::uint32_t kDiedStatus = 7;

constexpr const char* kFile = "vantrel.conf";
constexpr const char* kTemporary = "vantrel.conf-temp";

// Enough that half a write has whole lines and a part of one.
constexpr int kInstances = 90;

// Where the changes are after a commit.
enum class Changes { Pending, InMemory, InFile };

// The outcome of a commit with an error.
struct Course {
    XErr result;
    Changes changes;
    bool leftover;   // whether the temporary file is left
    int laterCalls;  // after the error
};

// A call of a commit, and the outcome when only this call fails, or this and every later one. A
// release that fails is fatal.
struct Call {
    const char* function;
    Course once;
    Course forEver;
};

constexpr Course kDone{XERR_SUCCESS, Changes::InFile, false, 0};

constexpr Course done(int laterCalls) { return {XERR_SUCCESS, Changes::InFile, false, laterCalls}; }
constexpr Course notLoaded(bool leftover, int laterCalls) {
    return {XERR_FAILURE, Changes::Pending, leftover, laterCalls};
}
constexpr Course notWritten(bool leftover, int laterCalls) {
    return {XERR_NOSPC, Changes::InMemory, leftover, laterCalls};
}
constexpr Course kNotCreated{XERR_ACCES, Changes::Pending, false, 1};

constexpr Call kCalls[] = {
    // The temporary file.
    {"CreateFileW", kNotCreated, kNotCreated},
    // The file is loaded again.
    {"CreateFileW", notLoaded(false, 3), notLoaded(true, 3)},
    {"ReadFile", notLoaded(false, 4), notLoaded(true, 4)},
    {"CloseHandle", done(7), notWritten(true, 4)},
    // The temporary file is filled; then a failure deletes it.
    {"WriteFile", notWritten(false, 3), notWritten(true, 3)},
    {"CloseHandle", done(5), notWritten(true, 4)},
    // It is flushed. The commit continues even if this fails.
    {"CreateFileW", done(2), notWritten(true, 3)},
    {"FlushFileBuffers", done(3), notWritten(true, 4)},
    {"CloseHandle", done(2), notWritten(true, 3)},
    // It replaces the file.
    {"MoveFileExW", notWritten(false, 2), notWritten(true, 2)},
    {"ReleaseMutex", kDone, kDone},
};

constexpr int kCallCount = static_cast<int>(std::size(kCalls));
constexpr int kWrite = 4;
constexpr int kMove = kCallCount - 2;
constexpr int kRelease = kCallCount - 1;

// Retries of a denied move.
constexpr int kMoreMoves = 10;

const Call& callAt(int call) { return kCalls[static_cast<std::size_t>(call)]; }

const Course& courseOf(Fault fault, int call) {
    return fault == Fault::ErrorOnce ? callAt(call).once : callAt(call).forEver;
}

bool isWrite(int call) { return std::string_view(callAt(call).function) == "WriteFile"; }

std::string nameOf(const Faults& faults) {
    std::string name;
    for (const FaultAt& at : faults) {
        name += "fault " + std::to_string(static_cast<int>(at.fault)) + " at " +
                std::to_string(at.call) + " ";
    }
    return name;
}

// Errors without deaths. The release is the last call, so ErrorForEver equals ErrorOnce there.
std::vector<Faults> errors() {
    std::vector<Faults> all;
    for (int call = 0; call < kCallCount; ++call) all.push_back({{Fault::ErrorOnce, call}});
    for (int call = 0; call < kRelease; ++call) all.push_back({{Fault::ErrorForEver, call}});
    return all;
}

// Deaths without errors. A death after a call is a death before the next one.
std::vector<Faults> deaths() {
    std::vector<Faults> all;
    for (int call = 0; call < kCallCount; ++call) {
        all.push_back({{Fault::DieBefore, call}});
        if (isWrite(call)) all.push_back({{Fault::DieHalfway, call}});
    }
    all.push_back({{Fault::DieAfter, kRelease}});
    return all;
}

// Deaths at each call after an error, which may be a call that only such a commit makes. The short
// form has the errors with the most later calls.
std::vector<Faults> deathsAfterErrors() {
    std::vector<FaultAt> first{{Fault::ErrorOnce, 2},
                               {Fault::ErrorOnce, kWrite},
                               {Fault::ErrorOnce, kMove},
                               {Fault::ErrorForEver, kWrite}};
    if (proofSize(0, 1) == 1) {
        first.clear();
        for (const Faults& error : errors()) first.push_back(error.front());
    }
    std::vector<Faults> all;
    for (const FaultAt& error : first) {
        const int last = error.call + courseOf(error.fault, error.call).laterCalls;
        for (int call = error.call + 1; call <= last; ++call) {
            all.push_back({error, {Fault::DieBefore, call}});
        }
    }
    return all;
}

// Deaths among the retries of a denied move.
std::vector<Faults> deathsAfterDeniedMoves() {
    std::vector<Faults> all{{{Fault::DeniedOnce, kMove}, {Fault::DieBefore, kMove + 1}},
                            {{Fault::DeniedOnce, kMove}, {Fault::DieAfter, kMove + 1}}};
    const int remove = kMove + kMoreMoves + 1;
    for (int call = kMove + 1; call <= remove; call += call < remove - 1 ? proofSize(5, 1) : 1) {
        all.push_back({{Fault::DeniedForEver, kMove}, {Fault::DieBefore, call}});
    }
    all.push_back({{Fault::DeniedForEver, kMove}, {Fault::DieAfter, remove}});
    return all;
}

// Whether the file has been replaced when the last fault ends the process.
bool isMoved(const Faults& faults) {
    int move = kMove;
    if (faults.size() > 1) {
        const FaultAt& error = faults.front();
        if (error.fault == Fault::DeniedForEver) return false;
        if (error.fault == Fault::DeniedOnce) {
            ++move;
        } else {
            const Course& course = courseOf(error.fault, error.call);
            if (course.changes != Changes::InFile) return false;
            move = error.call + course.laterCalls - 1;
        }
    }
    const FaultAt& death = faults.back();
    return death.call > move || (death.call == move && death.fault == Fault::DieAfter);
}

void addInstances(ConfStore& store) {
    for (int i = 1; i <= kInstances; ++i) {
        confAddInstance(store, "Nougat64_" + std::to_string(i));
    }
}

constexpr const char* kDpi = "vtr.instance.Nougat64_1.dpi";
constexpr const char* kLocale = "vtr.locale";

void stage(ConfStore& store) {
    confSetI32(store, kDpi, 320);
    confSetString(store, kLocale, "de-DE");
}

// The files before and after a commit without a fault, and its calls.
struct Commit {
    std::string before;
    std::string after;
    Lines calls;
};

// What a process prints after a commit that it survived.
struct Report {
    XErr result = 0;
    int pending = 0;  // whether there are changes, and which of the two
    int dpiPending = 0;
    int localePending = 0;
    int calls = 0;
    XErr again = 0;
    Lines names;  // the files before it initialises again
};

Report reportOf(const std::string& text) {
    Report report;
    std::istringstream in(text);
    in >> report.result >> report.pending >> report.dpiPending >> report.localePending >>
        report.calls >> report.again;
    EXPECT_TRUE(in) << text;
    for (std::string name; in >> name;) report.names.push_back(name);
    return report;
}

class CommitFaultsTest : public ::testing::Test {
 protected:
    CommitFaultsTest() {
        ConfStore& store = confStore();
        other.write("empty", "");
        EXPECT_EQ(confLibInit(store, other / "empty", false), 0);
        addInstances(store);
        confSetI32(store, kDpi, 240);  // earlier tests in the same process changed it
        EXPECT_EQ(confCommitToFile(store, path), 0);
        commit.before = folder.read(kFile);
        EXPECT_GT(commit.before.size(), 100'000u);
        EXPECT_EQ(confLibInit(store, path, false), 0);
        stage(store);
        arm({});
        EXPECT_EQ(confCommit(store), 0);
        commit.calls = disarm();
        commit.after = folder.read(kFile);
        expectValues(commit.before, "240", "");
        expectValues(commit.after, "320", "de-DE");
    }

    static void expectValues(const std::string& content, const std::string& dpi,
                             const std::string& locale) {
        EXPECT_NE(content.find(kDpi + ("=\"" + dpi + "\"\n")), std::string::npos);
        EXPECT_NE(content.find(kLocale + ("=\"" + locale + "\"\n")), std::string::npos);
    }

    // Commits with faults in another process.
    ChildResult play(const Faults& faults) {
        folder.write(kFile, commit.before);
        Lines arguments{path, other / "seen"};
        for (const FaultAt& at : faults) {
            arguments.push_back(std::to_string(static_cast<int>(at.fault)));
            arguments.push_back(std::to_string(at.call));
        }
        return runSubprocess("commitsWithFaults", arguments);
    }

    // Expects a process to survive its faults with this outcome, and to commit again.
    void expectCourse(const Faults& faults, const Course& expected, int calls) {
        SCOPED_TRACE(nameOf(faults));
        const ChildResult child = play(faults);
        ASSERT_EQ(child.status, 0u) << child.out << child.err;
        const Report report = reportOf(child.out);
        EXPECT_EQ(report.result, expected.result);
        const int pending = expected.changes == Changes::Pending ? 1 : 0;
        EXPECT_EQ(report.pending, pending);
        EXPECT_EQ(report.dpiPending, pending);
        EXPECT_EQ(report.localePending, pending);
        EXPECT_EQ(report.calls, calls);
        EXPECT_EQ(report.names, expected.leftover ? (Lines{kFile, kTemporary}) : Lines{kFile});
        const bool isInFile = expected.changes == Changes::InFile;
        EXPECT_TRUE(other.read("seen") == (isInFile ? commit.after : commit.before));
        EXPECT_EQ(report.again, 0);
        EXPECT_TRUE(folder.read(kFile) == commit.after);
        EXPECT_EQ(folder.list(), Lines{kFile});
        expectNextCommit(nameOf(faults));
    }

    // Expects a process to die at its last fault, and to leave the old file before the move and the
    // new one after it, at most a temporary file, and no lock.
    void expectDeath(const Faults& faults) {
        SCOPED_TRACE(nameOf(faults));
        ASSERT_EQ(play(faults).status, kDiedStatus);
        EXPECT_TRUE(folder.read(kFile) == (isMoved(faults) ? commit.after : commit.before));
        EXPECT_TRUE(folder.list() == Lines{kFile} || folder.list() == (Lines{kFile, kTemporary}));
        expectNextCommit(nameOf(faults));
    }

    // Expects this process to be able to commit.
    void expectNextCommit(const std::string& where) {
        ConfStore& store = confStore();
        ASSERT_EQ(confLibInit(store, path, false), 0) << where;
        confSetString(store, "vtr.guid", where);
        ASSERT_EQ(confCommit(store), 0) << where;
        EXPECT_NE(folder.read(kFile).find("vtr.guid=\"" + where + "\"\n"), std::string::npos);
        EXPECT_EQ(folder.list(), Lines{kFile}) << where;
    }

    TempFolder folder;
    TempFolder other;  // for other files than the commit's
    std::string path = folder / kFile;
    Commit commit;
    LogCapture log;
};

}  // namespace

// For inject.sh: writes a file, and commits to it.
SUBPROCESS(fills) {
    LogCapture quiet;
    ConfStore& store = confStore();
    writeBytes(arguments[0], "");
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    addInstances(store);
    return confCommitToFile(store, arguments[0]);
}

SUBPROCESS(commits) {
    LogCapture quiet;
    ConfStore& store = confStore();
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    stage(store);
    return confCommit(store) == 0 ? 0 : 2;
}

// Commits with faults, copies the resulting file, initialises and commits again, and prints a
// Report.
SUBPROCESS(commitsWithFaults) {
    LogCapture quiet;
    ConfStore& store = confStore();
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    stage(store);
    Faults faults;
    for (std::size_t i = 2; i < arguments.size(); i += 2) {
        faults.push_back(
            {static_cast<Fault>(std::stoi(arguments[i])), std::stoi(arguments[i + 1])});
    }
    arm(std::move(faults));
    const XErr result = confCommit(store);
    const std::size_t calls = disarm().size();
    std::printf("%d %d %d %d %zu", result, confHasPendingChanges(store),
                confIsPropPending(store, kDpi), confIsPropPending(store, kLocale), calls);
    std::set<std::string> names;
    for (const auto& entry :
         std::filesystem::directory_iterator(systemPath(arguments[0]).parent_path())) {
        names.insert(entry.path().filename().string());
    }
    writeBytes(arguments[1], readBytes(arguments[0]));
    if (confLibInit(store, arguments[0], false) != 0) return 2;
    stage(store);
    std::printf(" %d", confCommit(store));
    for (const std::string& name : names) std::printf(" %s", name.c_str());
    return 0;
}

TEST_F(CommitFaultsTest, ACommitMakesTheCallsOfTheSweep) {
    Lines expected;
    for (const Call& call : kCalls) expected.emplace_back(call.function);
    EXPECT_EQ(commit.calls, expected);
}

TEST_F(CommitFaultsTest, ACallThatFailsLosesNothing) {
    int fatal = 0;
    for (const Fault fault : {Fault::ErrorOnce, Fault::ErrorForEver}) {
        for (int call = 0; call < kRelease; ++call) {
            const Course& course = courseOf(fault, call);
            ASSERT_NO_FATAL_FAILURE(
                expectCourse({{fault, call}}, course, call + 1 + course.laterCalls));
        }
        // Only a lock that cannot be released is fatal.
        const Faults release{{fault, kRelease}};
        ASSERT_EQ(play(release).status, kFatalStatus);
        ++fatal;
        EXPECT_TRUE(folder.read(kFile) == commit.after);
        expectNextCommit(nameOf(release));
    }
    EXPECT_EQ(fatal, 2);
}

TEST_F(CommitFaultsTest, AProcessThatDiesAtAnyCallLeavesAWholeFileAndNoLock) {
    for (const Faults& death : deaths()) ASSERT_NO_FATAL_FAILURE(expectDeath(death));
}

TEST_F(CommitFaultsTest, AProcessThatDiesAfterAnErrorLeavesAWholeFileAndNoLock) {
    for (const Faults& death : deathsAfterErrors()) ASSERT_NO_FATAL_FAILURE(expectDeath(death));
}

TEST_F(CommitFaultsTest, AMoveThatIsDeniedIsTriedAgain) {
    expectCourse({{Fault::DeniedOnce, kMove}}, kDone, kCallCount + 1);
    expectCourse({{Fault::DeniedForEver, kMove}}, {XERR_ACCES, Changes::InMemory, false, 0},
                 kCallCount + kMoreMoves + 1);
}

TEST_F(CommitFaultsTest, AProcessThatDiesAfterADeniedMoveLeavesAWholeFileAndNoLock) {
    for (const Faults& death : deathsAfterDeniedMoves()) {
        ASSERT_NO_FATAL_FAILURE(expectDeath(death));
    }
}

// All faults are different.
TEST_F(CommitFaultsTest, TheSweepIsWideEnough) {
    std::set<std::string> points;
    std::size_t played = 0;
    for (const auto& all : {errors(), deaths(), deathsAfterErrors(), deathsAfterDeniedMoves()}) {
        for (const Faults& faults : all) points.insert(nameOf(faults));
        played += all.size();
    }
    EXPECT_EQ(points.size(), played);
    EXPECT_GE(points.size(), 40u);
    RecordProperty("points", static_cast<int>(points.size()));
    std::printf("%zu different points\n", points.size());
}

// The temporary file does not exist, or is larger than the new file.
TEST_F(CommitFaultsTest, APowerFailureLeavesTheOldFileOrTheNewOne) {
    for (const bool hasLeftover : {false, true}) {
        DiskContents before{{path, commit.before}};
        if (hasLeftover) before[folder / kTemporary] = commit.before + commit.before;
        for (const auto& [file, content] : before) writeBytes(file, content);
        ConfStore& store = confStore();
        ASSERT_EQ(confLibInit(store, path, false), 0);
        stage(store);
        record();
        ASSERT_EQ(confCommit(store), 0);
        const std::vector<FileOperation> operations = recorded();
        ASSERT_EQ(folder.list(), Lines{kFile});
        ASSERT_TRUE(folder.read(kFile) == commit.after);
        expectOldOrNew(operations, before, path, commit.after);
    }
}
