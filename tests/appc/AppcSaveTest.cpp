#include "AppcFixture.h"
#include "support/HeldFile.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/SignsOfLife.h"
#include "support/Subprocess.h"
#include "xpl/Xproc.h"

namespace fs = std::filesystem;

namespace {

class AppcSaveTest : public AppcTest {
 protected:
    // Expects a save to return this status, and to log this line.
    void expectSave(XErr result, const std::string& line) {
        log.clear();
        EXPECT_EQ(appcSaveToFile(store), result);
        EXPECT_EQ(log.texts(), Lines{line});
    }
};

const std::vector<PlainApp> kOld{{"com.old", "com.old.Main", "Old", 1, "1.0"}};
const std::vector<PlainApp> kNew{{"com.new", "com.new.Main", "New", 2, "2.0"}};

// Replaces the apps in memory.
void setApps(AppcStore& store, const std::vector<PlainApp>& apps) {
    const std::lock_guard<AppcLock> guard(store.lock);
    store.apps.clear();
    for (const PlainApp& app : apps) {
        store.apps[app.package] = {app.activity, app.appLabel, app.versionCode, app.versionName,
                                   appcIconFileName(app.package)};
    }
}

// Ends the process at the step with this number, without clean-up.
class DyingFiles final : public FailingFiles {
 public:
    explicit DyingFiles(int lastStep) : left_(lastStep) {}

    XErr makeFolder(const std::string& path) override {
        step();
        const XErr err = FailingFiles::makeFolder(path);
        step();
        return err;
    }
    AppcWrite write(const std::string& path, std::string_view text) override {
        for (const std::size_t size : {std::size_t{0}, std::size_t{1}, text.size() / 2}) {
            static_cast<void>(FailingFiles::write(path, text.substr(0, size)));
            step();
        }
        const AppcWrite result = FailingFiles::write(path, text);
        step();
        return result;
    }
    XErr replace(const std::string& source, const std::string& destination) override {
        step();
        const XErr err = FailingFiles::replace(source, destination);
        step();
        return err;
    }

 private:
    void step() {
        if (--left_ == 0) std::_Exit(7);
    }

    int left_;
};

// A cache on a disk that can fail, with the old apps in its file and the new ones in memory.
struct FailingStore : ForeignStore {
    explicit FailingStore(const std::string& data) : ForeignStore(data, files) {
        writeBytes(instanceDir("Nougat64") + "AppCache.json", fileOf(kOld));
        EXPECT_EQ(appcLibInit(*this, "Nougat64"), 0);
        setApps(*this, kNew);
    }

    FailingFiles files;
};

}  // namespace

TEST_F(AppcSaveTest, AnEmptyCacheIsWrittenAndTheFolderCreated) {
    ASSERT_EQ(appcLibInit(store, "Nougat64"), 0);
    ASSERT_FALSE(fs::exists(systemPath(dir())));
    log.clear();
    EXPECT_EQ(appcSaveToFile(store), 0);
    EXPECT_EQ(read(), "[\n]\n");
    EXPECT_EQ(list(), Lines{"AppCache.json"});
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(AppcSaveTest, ReplacesTheFile) {
    ASSERT_EQ(init(fileOf(kOld)), 0);
    setApps(store, kNew);
    EXPECT_EQ(appcSaveToFile(store), 0);
    EXPECT_EQ(read(), fileOf(kNew));
    EXPECT_EQ(list(), Lines{"AppCache.json"});
}

TEST_F(AppcSaveTest, ASavedCacheIsLoadedAgainByteForByte) {
    const std::string odd = arrayOf(
        {Element{R"("b \"q\" \\ /")", R"("\u0001\b\t")", R"("é 日本 🎮")", "1e3", "\"\x7F\""}
             .text(),
         Element{R"("a\u0000b")", "\"\"", R"("x\ud800y")", "1.5", "\"1\""}.text()});
    ASSERT_EQ(init(odd), 0);
    ASSERT_EQ(appcSaveToFile(store), 0);
    EXPECT_EQ(read(), fileOf({{R"(a\u0000b)", "", "x?y", 1, "1"},
                              {R"(b \"q\" \\ /)", R"(\u0001\b\t)", "é 日本 🎮", 1000, "\x7F"}}));
    const std::string saved = read();
    ASSERT_EQ(appcLoadFromFile(store), 0);
    ASSERT_EQ(appcSaveToFile(store), 0);
    EXPECT_EQ(read(), saved);
}

TEST_F(AppcSaveTest, WithoutTheInstancesFolderTheCachesFolderCannotBeCreated) {
    ASSERT_EQ(appcLibInit(store, "New"), 0);
    expectSave(XERR_NOENT, logged::cacheFolderNotMade(dir("New"), "XERR_NOENT [2]"));
    EXPECT_FALSE(data.has("Engine\\New"));
}

TEST_F(AppcSaveTest, BeforeTheCacheIsOpenedThereIsNowhereToSaveTo) {
    expectSave(XERR_NOENT, logged::cacheFolderNotMade("", "XERR_NOENT [2]"));
}

TEST_F(AppcSaveTest, AFileInPlaceOfTheFolderIsAFailedOpen) {
    data.write("Engine\\Nougat64\\AppCache", "x");
    ASSERT_EQ(appcLibInit(store, "Nougat64"), 0);
    expectSave(-1, logged::cacheNotOpenedForWriting(file()));
    EXPECT_EQ(data.read("Engine\\Nougat64\\AppCache"), "x");
}

TEST_F(AppcSaveTest, AFolderInPlaceOfTheFileIsAFailedOpen) {
    data.makeFolder("Engine\\Nougat64\\AppCache\\AppCache.json");
    ASSERT_EQ(appcLibInit(store, "Nougat64"), 0);
    expectSave(-1, logged::cacheNotOpenedForWriting(file()));
    EXPECT_EQ(list(), Lines{"AppCache.json"}) << "nothing was written";
}

TEST_F(AppcSaveTest, AFileThatMustNotBeWrittenIsAFailedOpen) {
    ASSERT_EQ(init(fileOf(kOld)), 0);
    setApps(store, kNew);
    fs::permissions(systemPath(file()), fs::perms::owner_read | fs::perms::group_read);
    log.clear();
    // On some systems an administrator may write read-only files.
    const bool refused = appcSaveToFile(store) != 0;
    fs::permissions(systemPath(file()), fs::perms::all);
    if (!refused) GTEST_SKIP() << "needs Windows, whose read-only files are so for everybody";
    EXPECT_EQ(log.texts(), Lines{logged::cacheNotOpenedForWriting(file())});
    EXPECT_EQ(read(), fileOf(kOld));
    EXPECT_EQ(list(), Lines{"AppCache.json"});
}

TEST_F(AppcSaveTest, AnExceptionLeavesTheOldFileAloneAndNoLock) {
    for (bool FailingFiles::*thrower : {&FailingFiles::throwInWrite, &FailingFiles::throwInMove}) {
        write("");
        FailingStore failing(data.path());
        failing.files.*thrower = true;
        EXPECT_THROW(static_cast<void>(appcSaveToFile(failing)), std::bad_alloc);
        EXPECT_EQ(read(), fileOf(kOld));
        EXPECT_EQ(list(), Lines{"AppCache.json"});
        EXPECT_TRUE(isFileLockFree());
        failing.files.*thrower = false;
        EXPECT_EQ(appcSaveToFile(failing), 0);
        EXPECT_EQ(read(), fileOf(kNew));
    }
}

TEST_F(AppcSaveTest, TheMachineWideLockIsTakenForTheMoveOnly) {
    ASSERT_EQ(init("[]"), 0);
    LockWatch files(data.path());
    ForeignStore watched(data.path(), files);
    ASSERT_EQ(appcLibInit(watched, "Nougat64"), 0);
    files.steps.clear();
    EXPECT_EQ(appcSaveToFile(watched), 0);
    EXPECT_EQ(files.steps, (Lines{"folder", "write", "move, locked"}));
    files.steps.clear();
    files.failMove = true;
    EXPECT_EQ(appcSaveToFile(watched), -1);
    EXPECT_EQ(files.steps, (Lines{"folder", "write", "move, locked", "remove"}));
    EXPECT_TRUE(isFileLockFree());
}

TEST_F(AppcSaveTest, AFileThatIsHeldStaysWhole) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    ASSERT_EQ(init(fileOf(kOld)), 0);
    setApps(store, kNew);
    HeldFile held(file(), HeldFile::Shares::ReadAndWrite);
    ASSERT_TRUE(held.isHeld());
    EXPECT_EQ(appcSaveToFile(store), -1);
    held.release();
    EXPECT_EQ(log.texts(), Lines{logged::cacheNotWritten(file())});
    EXPECT_EQ(read(), fileOf(kOld));
    EXPECT_EQ(list(), Lines{"AppCache.json"});
    EXPECT_EQ(packages(), Lines{"com.new"}) << "the memory has what could not be saved";
    EXPECT_EQ(appcSaveToFile(store), 0);
    EXPECT_EQ(read(), fileOf(kNew));
}

TEST_F(AppcSaveTest, EveryStepThatFailsLeavesTheOldFileWhole) {
    const std::string cannotOpen = logged::cacheNotOpenedForWriting(file());
    const std::string failed = logged::cacheNotWritten(file());
    struct {
        void (*arrange)(FailingFiles& files);
        XErr result;
        std::string line;
        std::size_t removed;
    } const cases[] = {
        {[](FailingFiles& f) { f.folderError = XERR_NOSPC; }, XERR_NOSPC,
         logged::cacheFolderNotMade(dir(), "XERR_NOSPC [28]"), 0},
        {[](FailingFiles& f) { f.folderError = 100007; }, 100007,
         logged::cacheFolderNotMade(dir(), "NOTDEFINED: 100007 [100007]"), 0},
        {[](FailingFiles& f) { f.failOpen = true; }, -1, cannotOpen, 0},
        {[](FailingFiles& f) { f.writeLimit = 0; }, -1, failed, 1},
        {[](FailingFiles& f) { f.writeLimit = 17; }, -1, failed, 1},
        {[](FailingFiles& f) { f.failMove = true; }, -1, failed, 1},
    };
    for (const auto& [arrange, result, line, removed] : cases) {
        SCOPED_TRACE(line);
        write("");
        FailingStore failing(data.path());
        arrange(failing.files);
        log.clear();
        EXPECT_EQ(appcSaveToFile(failing), result);
        EXPECT_EQ(log.texts(), Lines{line});
        EXPECT_EQ(read(), fileOf(kOld));
        EXPECT_EQ(list(), Lines{"AppCache.json"});
        EXPECT_EQ(failing.files.removed.size(), removed);
    }
}

SUBPROCESS(savesAndDies) {
    LogCapture quiet;
    DyingFiles files(std::stoi(arguments[1]));
    ForeignStore store(arguments[0], files);
    if (appcLibInit(store, "Nougat64") != 0) return 1;
    setApps(store, kNew);
    return appcSaveToFile(store);
}

TEST_F(AppcSaveTest, ASaveThatDiesAtAnyStepLeavesAWholeFileAndNoLock) {
    constexpr int kMoved = 8;  // the step after the move
    for (int step = 1;; ++step) {
        ASSERT_EQ(init(fileOf(kOld)), 0);
        const ChildResult child =
            runSubprocess("savesAndDies", {data.path(), std::to_string(step)});
        if (child.status == 0) {
            EXPECT_EQ(step, kMoved + 1) << "the sweep went through every step";
            EXPECT_EQ(read(), fileOf(kNew));
            break;
        }
        ASSERT_EQ(child.status, 7u) << step;
        EXPECT_EQ(read(), fileOf(step < kMoved ? kOld : kNew)) << step;
        setApps(store, {});
        ASSERT_EQ(appcSaveToFile(store), 0) << step;
        EXPECT_EQ(read(), "[\n]\n");
    }
}

// Alternately saves and loads the same cache. All apps of a save have its writer and its number.
SUBPROCESS(savesAndLoads) {
    LogCapture log;
    ForeignStore store(arguments[0]);
    const std::string own = arguments[1];
    constexpr int kApps = 20;
    if (appcLibInit(store, "Nougat64") != 0) return 1;
    const int count = std::stoi(arguments[2]);
    std::puts("ready");
    std::fflush(stdout);
    for (int i = 0; i < count; ++i) {
        const std::lock_guard<AppcLock> guard(store.lock);
        store.apps.clear();
        for (int app = 0; app < kApps; ++app) {
            const std::string package = "com.app" + std::to_string(app);
            store.apps[package] = {own, own, i, own, appcIconFileName(package)};
        }
        if (appcSaveToFile(store) != 0) return 2;
        if (appcLoadFromFile(store) != 0) return 3;
        if (store.apps.size() != kApps) return 4;
        const AppcApp first = store.apps.begin()->second;
        for (const auto& entry : store.apps) {
            const AppcApp& app = entry.second;
            if (app.versionCode != first.versionCode || app.activity != first.activity) return 5;
        }
    }
    for (const std::string& line : log.texts()) std::puts(line.c_str());
    return 0;
}

TEST_F(AppcSaveTest, TwoProcessesThatSaveAndLoadAtTheSameTimeSeeWholeFilesOnly) {
    ASSERT_EQ(init("[]"), 0);
    ASSERT_EQ(appcSaveToFile(store), 0);
    ChildOptions options;
    options.limit = std::chrono::seconds(120);
    ChildProcess a = startSubprocess("savesAndLoads", {data.path(), "a", "1000"}, options);
    ChildProcess b = startSubprocess("savesAndLoads", {data.path(), "b", "1000"}, options);
    ASSERT_EQ(a.readLine(), "ready");
    ASSERT_EQ(b.readLine(), "ready");
    for (ChildProcess* child : {&a, &b}) {
        const ChildResult result = child->finish();
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.out, "") << "not one line was logged";
    }
    EXPECT_EQ(appcLoadFromFile(store), 0);
    EXPECT_EQ(count(), 20u);
    EXPECT_EQ(app("com.app0").versionCode, 999);
    EXPECT_EQ(list(), Lines{"AppCache.json"});
}

SUBPROCESS(staysAlive) {
    leaveSignOfLife(arguments[0]);
    sleepMs(120'000);
    return 0;
}

TEST_F(AppcSaveTest, ChildrenThatStartMeanwhileNeverBlockASave) {
    constexpr int kSaves = 1000;
    constexpr int kChildren = 25;
    ASSERT_EQ(init(fileOf(kOld)), 0);
    std::atomic<int> saves{0};
    std::vector<XprocHandle> children(kChildren);
    SignsOfLife signs;
    std::thread launcher([&] {
        for (int i = 0; i < kChildren; ++i) {
            EXPECT_EQ(xprocCreate(&children[static_cast<std::size_t>(i)],
                                  {builtProgram("appc_test.exe"), "--subprocess", "staysAlive",
                                   signs.next()}),
                      0);
            while (saves < kSaves * i / kChildren) sleepMs(1);
        }
    });
    for (int i = 1; i <= kSaves; ++i) {
        EXPECT_EQ(appcSaveToFile(store), 0) << i;
        EXPECT_EQ(appcLoadFromFile(store), 0) << i;
        saves = i;
    }
    launcher.join();
    EXPECT_TRUE(signs.allArrived());
    for (XprocHandle child : children) {
        xprocKill(child, 0);
        EXPECT_EQ(xprocWait(child, nullptr), 0);
    }
    EXPECT_EQ(read(), fileOf(kOld));
    EXPECT_EQ(log.texts(XLOG_WARNING), Lines{});
}
