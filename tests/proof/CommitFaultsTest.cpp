// A commit whose every call into the system fails, or is the last thing that the process does: the
// file is the old one or the new one, whole, and the next commit of anybody succeeds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include "SystemCalls.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/Scene.h"
#include "support/TempFolder.h"

namespace {

constexpr std::uint32_t kDiedStatus = 7;

// Large enough to be written in two pieces.
constexpr int kInstances = 900;

void addInstances(ConfStore& store) {
    for (int i = 1; i <= kInstances; ++i) {
        confAddInstance(store, "Nougat64_" + std::to_string(i));
    }
}

void stage(ConfStore& store) {
    confSetI32(store, "vtr.instance.Nougat64_1.dpi", 320);
    confSetString(store, "vtr.locale", "de-DE");
}

// The number of calls that a commit makes, and what it leaves behind without a fault.
struct Commit {
    std::string before;
    std::string after;
    int calls = 0;
};

class CommitFaultsTest : public ::testing::Test {
 protected:
    CommitFaultsTest() {
        ConfStore& store = confStore();
        folder.write("empty", "");
        EXPECT_EQ(confLibInit(store, folder / "empty", false), 0);
        addInstances(store);
        EXPECT_EQ(confCommitToFile(store, path), 0);
        commit.before = folder.read("vantrel.conf");
        EXPECT_GT(commit.before.size(), std::size_t{1} << 20);
        EXPECT_EQ(confLibInit(store, path, false), 0);
        stage(store);
        arm(Fault::None, -1);
        EXPECT_EQ(confCommit(store), 0);
        commit.calls = disarm();
        commit.after = folder.read("vantrel.conf");
        EXPECT_NE(commit.after, commit.before);
    }

    // A process that commits with one fault.
    ChildResult play(Fault fault, int call) {
        folder.write("vantrel.conf", commit.before);
        return runScene("commitsWithAFault",
                        {path, std::to_string(static_cast<int>(fault)), std::to_string(call)});
    }

    void expectWhole(const std::string& where) {
        const std::string now = folder.read("vantrel.conf");
        EXPECT_TRUE(now == commit.before || now == commit.after)
            << where << ": " << now.size() << " bytes";
    }

    // This process is another one, and nothing keeps it from committing.
    void expectNextCommit(const std::string& where) {
        ConfStore& store = confStore();
        ASSERT_EQ(confLibInit(store, path, false), 0) << where;
        confSetString(store, "vtr.guid", where);
        ASSERT_EQ(confCommit(store), 0) << where;
        EXPECT_NE(folder.read("vantrel.conf").find("vtr.guid=\"" + where + "\"\n"),
                  std::string::npos);
        EXPECT_FALSE(folder.has("vantrel.conf-temp")) << where;
    }

    TempFolder folder;
    std::string path = folder / "vantrel.conf";
    Commit commit;
    LogCapture log;
};

}  // namespace

// The two halves of what inject.sh plays: a file to begin with, and one commit over it.
SCENE(fills) {
    LogCapture quiet;
    ConfStore& store = confStore();
    writeBytes(arguments[0], "");
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    addInstances(store);
    return confCommitToFile(store, arguments[0]);
}

SCENE(commits) {
    LogCapture quiet;
    ConfStore& store = confStore();
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    stage(store);
    return confCommit(store) == 0 ? 0 : 2;
}

// Commits with a fault, and says what came of it: the result, the size of the file, and the result
// of starting over, as a host does.
SCENE(commitsWithAFault) {
    LogCapture quiet;
    ConfStore& store = confStore();
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    stage(store);
    arm(static_cast<Fault>(std::stoi(arguments[1])), std::stoi(arguments[2]));
    const XErr result = confCommit(store);
    disarm();
    const std::size_t size = readBytes(arguments[0]).size();
    if (confLibInit(store, arguments[0], false) != 0) return 2;
    stage(store);
    std::printf("%d %d %zu", result, confCommit(store), size);
    return 0;
}

TEST_F(CommitFaultsTest, TheSweepIsWideEnough) { EXPECT_GE(commit.calls * 5, 40); }

TEST_F(CommitFaultsTest, ACallThatFailsLosesNothing) {
    for (const Fault fault : {Fault::ErrorOnce, Fault::ErrorForEver}) {
        for (int call = 0; call < commit.calls; ++call) {
            const std::string where =
                std::to_string(static_cast<int>(fault)) + "-" + std::to_string(call);
            const ChildResult child = play(fault, call);
            if (child.status == kFatalStatus) {  // a lock that cannot be released
                expectWhole(where);
            } else {
                ASSERT_EQ(child.status, 0u) << where << child.out << child.err;
                int result = 0;
                int again = 0;
                std::size_t size = 0;
                ASSERT_EQ(std::sscanf(child.out.c_str(), "%d %d %zu", &result, &again, &size), 3);
                EXPECT_EQ(again, 0) << where;
                EXPECT_EQ(size, (result == 0 ? commit.after : commit.before).size()) << where;
                EXPECT_TRUE(folder.read("vantrel.conf") == commit.after) << where;
            }
            expectNextCommit(where);
        }
    }
}

TEST_F(CommitFaultsTest, AProcessThatDiesAtAnyCallLeavesAWholeFileAndNoLock) {
    for (const Fault fault : {Fault::DieBefore, Fault::DieHalfway, Fault::DieAfter}) {
        for (int call = 0; call < commit.calls; ++call) {
            const std::string where =
                std::to_string(static_cast<int>(fault)) + "-" + std::to_string(call);
            ASSERT_EQ(play(fault, call).status, kDiedStatus) << where;
            expectWhole(where);
            for (const std::string& name : folder.list()) {
                EXPECT_TRUE(name == "vantrel.conf" || name == "vantrel.conf-temp" ||
                            name == "empty")
                    << name;
            }
            expectNextCommit(where);
        }
    }
}

namespace {

// What becomes of bytes that were written and not flushed when the power fails.
enum class Loss { Kept, Gone, Half, Zeros };

struct DiskFile {
    std::string safe;     // flushed
    std::string written;  // what programs see
};

std::string afterLoss(const DiskFile& file, Loss loss) {
    const std::size_t open = file.written.size() - file.safe.size();
    switch (loss) {
        case Loss::Kept:
            return file.written;
        case Loss::Gone:
            return file.safe;
        case Loss::Half:
            return file.written.substr(0, file.safe.size() + open / 2);
        case Loss::Zeros:
            return file.safe + std::string(open, '\0');
    }
    return {};
}

// The configuration file after a power failure behind the first `count` operations. The last move
// may not have reached the disk.
std::string afterFailure(const std::vector<FileOperation>& operations, std::size_t count, Loss loss,
                         bool lastMoveCounts, const std::string& path, const std::string& before) {
    std::map<std::string, DiskFile> disk{{path, {before, before}}};
    for (std::size_t i = 0; i < count; ++i) {
        const FileOperation& operation = operations[i];
        DiskFile& file = disk[operation.path];
        switch (operation.kind) {
            case FileOperation::Create:
                file = {};
                break;
            case FileOperation::Write:
                file.written += operation.data;
                break;
            case FileOperation::Flush:
                file.safe = file.written;
                break;
            case FileOperation::Move:
                if (i + 1 == count && !lastMoveCounts) break;
                disk[operation.data] = file;
                disk.erase(operation.path);
                break;
            case FileOperation::Delete:
                disk.erase(operation.path);
                break;
        }
    }
    return afterLoss(disk[path], loss);
}

// Power failures that leave neither the old file nor the new one.
int badFailures(const std::vector<FileOperation>& operations, const std::string& path,
                const Commit& commit) {
    int bad = 0;
    for (std::size_t count = 0; count <= operations.size(); ++count) {
        for (const Loss loss : {Loss::Kept, Loss::Gone, Loss::Half, Loss::Zeros}) {
            for (const bool moved : {false, true}) {
                const std::string left =
                    afterFailure(operations, count, loss, moved, path, commit.before);
                if (left != commit.before && left != commit.after) ++bad;
            }
        }
    }
    return bad;
}

}  // namespace

TEST_F(CommitFaultsTest, APowerFailureLeavesTheOldFileOrTheNewOne) {
    folder.write("vantrel.conf", commit.before);
    ConfStore& store = confStore();
    ASSERT_EQ(confLibInit(store, path, false), 0);
    stage(store);
    record();
    ASSERT_EQ(confCommit(store), 0);
    std::vector<FileOperation> operations = recorded();
    ASSERT_GE(operations.size(), 5u);
    EXPECT_EQ(badFailures(operations, path, commit), 0);

    // The model sees what a commit without its flush would risk.
    operations.erase(std::remove_if(operations.begin(), operations.end(),
                                    [](const FileOperation& operation) {
                                        return operation.kind == FileOperation::Flush;
                                    }),
                     operations.end());
    EXPECT_GT(badFailures(operations, path, commit), 0);
}
