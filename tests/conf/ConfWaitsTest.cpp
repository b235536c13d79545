// What may wait for a disk, for another program or for the log, and what never does: the calls that
// a window's thread makes.
#include "ConfFixture.h"
#include "HookedFiles.h"
#include "conf/ConfInstanceValues.h"
#include "support/Platform.h"
#include "xpl/XmutexNamed.h"

namespace {

using Step = HookedFiles::Step;

// A place in another thread's work where that thread stops until it may go on.
class Stop {
 public:
    // For that thread.
    void here() {
        std::unique_lock<std::mutex> guard(lock_);
        isReached_ = true;
        changed_.notify_all();
        changed_.wait(guard, [this] { return mayGoOn_; });
    }
    bool waitUntilReached() {
        std::unique_lock<std::mutex> guard(lock_);
        return changed_.wait_for(guard, std::chrono::seconds(30), [this] { return isReached_; });
    }
    void letGoOn() {
        const std::lock_guard<std::mutex> guard(lock_);
        mayGoOn_ = true;
        changed_.notify_all();
    }

 private:
    std::mutex lock_;
    std::condition_variable changed_;
    bool isReached_ = false;
    bool mayGoOn_ = false;
};

const char* const kDpi = "vtr.instance.A.dpi";

struct Call {
    const char* name;
    std::function<void(ConfStore&)> run;
};

const std::vector<Call>& callsThatNeverWait() {
    static const std::vector<Call> all{
        {"confGetI32", [](ConfStore& s) { confGetI32(s, kDpi); }},
        {"confGetBool", [](ConfStore& s) { confGetBool(s, "vtr.enable_adb_access"); }},
        {"confGetString", [](ConfStore& s) { confGetString(s, "vtr.locale"); }},
        {"confGetMultiString",
         [](ConfStore& s) { confGetMultiStringList(s, "vtr.feedback_popup_ignored_apps"); }},
        {"confSetI32", [](ConfStore& s) { confSetI32(s, kDpi, 7); }},
        {"confSetString, new instance",
         [](ConfStore& s) { confSetString(s, "vtr.instance.New.display_name", "n"); }},
        {"confRestorePropDefault", [](ConfStore& s) { confRestorePropDefault(s, "vtr.locale"); }},
        {"confHasPendingChanges", [](ConfStore& s) { confHasPendingChanges(s); }},
        {"confIsPropPending", [](ConfStore& s) { confIsPropPending(s, kDpi); }},
        {"confDiscardChanges", [](ConfStore& s) { confDiscardChanges(s); }},
        {"confValidateProp",
         [](ConfStore& s) { EXPECT_TRUE(confValidateProp(s, kDpi, ConfType::I32, false)); }},
        {"confSetCurrentInstance",
         [](ConfStore& s) { EXPECT_EQ(confSetCurrentInstance(s, "A"), 0); }},
        {"confGetCurrentInstance", [](ConfStore& s) { confGetCurrentInstance(s); }},
        {"confCurrentInstanceKey", [](ConfStore& s) { confCurrentInstanceKey(s, "dpi"); }},
        {"confGetInstances", [](ConfStore& s) { EXPECT_EQ(confGetInstances(s).count("A"), 1u); }},
        {"confAddInstance", [](ConfStore& s) { confAddInstance(s, "Added"); }},
        {"ConfInstanceValues",
         [](ConfStore& s) {
             const ConfColumn column{"dpi", ConfType::I32};
             EXPECT_GE(ConfInstanceValues(s, &column, 1).size(), 1u);
         }},
    };
    return all;
}

class ConfWaitsTest : public ConfTest {
 protected:
    void SetUp() override { given("vtr.instance.A.dpi=\"1\"\nvtr.instance.A.ram=\"1\"\n"); }

    // The same configuration through other files.
    struct OtherStore : ConfStore {
        OtherStore(const ConfWaitsTest& test, ConfFiles& files) : ConfStore(test.catalogue, files) {
            fileLockName = test.store.fileLockName;
            EXPECT_EQ(confLibInit(*this, test.path(), false), 0);
        }
    };

    // Expects of each call that it ends while the other thread stands still.
    static void expectNoWait(ConfStore& store) {
        for (const Call& call : callsThatNeverWait()) {
            auto ended = std::async(std::launch::async, [&] { call.run(store); });
            const auto state = ended.wait_for(std::chrono::seconds(20));
            EXPECT_EQ(state, std::future_status::ready) << call.name;
            if (state != std::future_status::ready) return;  // the test ends with the others' waits
        }
    }

    // The same while another thread, which runs work(store), is stopped before that file operation.
    void expectNoWaitAt(Step step, const std::function<void(ConfStore&)>& work) {
        Stop stop;
        bool isArmed = false;
        HookedFiles files([&](Step at) {
            if (isArmed && at == step) stop.here();
            return XERR_SUCCESS;
        });
        OtherStore slow(*this, files);
        confSetI32(slow, "vtr.instance.A.ram", ++ram_);
        isArmed = true;
        std::thread worker([&] { work(slow); });
        EXPECT_TRUE(stop.waitUntilReached());
        expectNoWait(slow);
        stop.letGoOn();
        worker.join();
    }

 private:
    int ram_ = 1;
};

void commit(ConfStore& store) { EXPECT_EQ(confCommit(store), 0); }

void reload(ConfStore& store) { EXPECT_EQ(confReload(store), 0); }

}  // namespace

TEST_F(ConfWaitsTest, ReadsAndSetsDoNotWaitForTheDiskOfACommit) {
    for (const Step step : {Step::Create, Step::Read, Step::Write, Step::Replace}) {
        SCOPED_TRACE(static_cast<int>(step));
        expectNoWaitAt(step, commit);
    }
}

TEST_F(ConfWaitsTest, ReadsAndSetsDoNotWaitForTheDiskOfAReload) {
    expectNoWaitAt(Step::Read, reload);
}

TEST_F(ConfWaitsTest, ReadsAndSetsDoNotWaitForTheDiskOfAnInitialisation) {
    expectNoWaitAt(Step::Read,
                   [this](ConfStore& s) { EXPECT_EQ(confLibInit(s, path(), false), 0); });
}

TEST_F(ConfWaitsTest, ReadsAndSetsDoNotWaitForAnotherProgramThatHoldsTheFile) {
    XmutexNamed others;
    ASSERT_EQ(others.init(store.fileLockName), 0);
    for (const auto& work : {commit, reload}) {
        set("vtr.instance.A.ram", 3);
        std::thread worker;
        {
            const std::lock_guard<XmutexNamed> held(others);
            worker = std::thread([&] { work(store); });
            while (store.lock.try_lock()) {  // until the worker has it, and waits for the file
                store.lock.unlock();
                sleepMs(1);
            }
            expectNoWait(store);
        }
        worker.join();
    }
}

namespace {

Stop* logStop = nullptr;

std::int32_t everyLine(std::int32_t, std::int32_t) { return 1; }

// Stands still at the line of a commit.
std::int32_t slowPrint(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                       const char* format, ...) {
    if (std::string(format).rfind("xfileMove failed", 0) == 0) logStop->here();
    return 0;
}

}  // namespace

TEST_F(ConfWaitsTest, ReadsAndSetsDoNotWaitForALogLineOfACommit) {
    HookedFiles files(Step::Replace, XERR_ACCES);
    OtherStore failing(*this, files);
    confSetI32(failing, "vtr.instance.A.ram", 2);
    Stop stop;
    logStop = &stop;
    const XlogLogger before = xlogGetLogger();
    const XlogLogger slow{everyLine, slowPrint};
    ASSERT_EQ(xlogLibInit(&slow, {}), 0);
    std::thread worker([&] { EXPECT_NE(confCommit(failing), 0); });
    EXPECT_TRUE(stop.waitUntilReached());
    expectNoWait(failing);
    stop.letGoOn();
    worker.join();
    EXPECT_EQ(xlogLibInit(&before, {}), 0);
}

TEST_F(ConfWaitsTest, ASetDuringACommitIsStagedWhenItReturns) {
    Stop stop;
    HookedFiles files([&](Step at) {
        if (at == Step::Replace) stop.here();
        return XERR_SUCCESS;
    });
    OtherStore slow(*this, files);
    confSetI32(slow, kDpi, 2);
    std::thread worker([&] { commit(slow); });
    ASSERT_TRUE(stop.waitUntilReached());
    EXPECT_FALSE(confHasPendingChanges(slow)) << "the change is in the text already";
    confSetI32(slow, "vtr.instance.A.ram", 5);
    stop.letGoOn();
    worker.join();
    EXPECT_TRUE(confIsPropPending(slow, "vtr.instance.A.ram"));
    EXPECT_FALSE(confIsPropPending(slow, kDpi));
    EXPECT_NE(file().find("vtr.instance.A.dpi=\"2\"\n"), std::string::npos);
    EXPECT_NE(file().find("vtr.instance.A.ram=\"1\"\n"), std::string::npos);
}

TEST_F(ConfWaitsTest, ASetBeforeTheMergeIsPartOfTheCommit) {
    Stop stop;
    HookedFiles files([&](Step at) {
        if (at == Step::Create) stop.here();
        return XERR_SUCCESS;
    });
    OtherStore slow(*this, files);
    confSetI32(slow, kDpi, 2);
    std::thread worker([&] { commit(slow); });
    ASSERT_TRUE(stop.waitUntilReached());
    confSetI32(slow, "vtr.instance.A.ram", 5);
    stop.letGoOn();
    worker.join();
    EXPECT_FALSE(confHasPendingChanges(slow));
    EXPECT_NE(file().find("vtr.instance.A.ram=\"5\"\n"), std::string::npos);
}

// Two commits of one change: the second one finds nothing to do, and not before the first is done.
TEST_F(ConfWaitsTest, ACommitWithoutChangesWaitsForTheOneThatRuns) {
    Stop stop;
    int moves = 0;
    HookedFiles files([&](Step at) {
        if (at == Step::Replace && ++moves == 1) stop.here();
        return XERR_SUCCESS;
    });
    OtherStore slow(*this, files);
    confSetI32(slow, kDpi, 2);
    std::thread first([&] { commit(slow); });
    ASSERT_TRUE(stop.waitUntilReached());
    auto second = std::async(std::launch::async, [&] { commit(slow); });
    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    stop.letGoOn();
    first.join();
    second.get();
    EXPECT_EQ(moves, 1);
}

// A read never finds the default of a key that the file has.
TEST_F(ConfWaitsTest, AnotherInitialisationShowsNoDefaultInBetween) {
    writeFile("vtr.locale=\"of the file\"\n");
    ASSERT_EQ(confReload(store), 0);
    std::atomic<bool> done{false};
    std::thread again([&] {
        for (int i = 0; i < 50; ++i) EXPECT_EQ(confLibInit(store, path(), false), 0);
        done = true;
    });
    while (!done) EXPECT_EQ(confGetString(store, "vtr.locale"), "of the file");
    again.join();
}

// Values that change together are seen together.
TEST_F(ConfWaitsTest, TheListingIsOfOneMoment) {
    const ConfColumn columns[] = {{"dpi", ConfType::I32}, {"ram", ConfType::I32}};
    std::atomic<bool> done{false};
    std::thread reloading([&] {
        for (int i = 0; i < 200; ++i) {
            const std::string number = std::to_string(i);
            writeFile("vtr.instance.A.dpi=\"" + number + "\"\nvtr.instance.A.ram=\"" + number +
                      "\"\n");
            EXPECT_EQ(confReload(store), 0);
        }
        done = true;
    });
    while (!done) {
        const ConfInstanceValues values(store, columns, 2);
        EXPECT_EQ(values.size(), 1u);
        EXPECT_EQ(values.value(0, 0), values.value(0, 1));
    }
    reloading.join();
}

// The commit of a removal reads the file, which has the instance, and lists it again; its keys are
// gone in the same step.
TEST_F(ConfWaitsTest, AnInstanceIsNeverListedWhileItsKeysAreFatal) {
    const ConfColumn column{"dpi", ConfType::I32};
    std::atomic<bool> done{false};
    std::thread deleting([&] {
        for (int i = 0; i < 100; ++i) {
            writeFile("vtr.instance.A.dpi=\"1\"\n");
            EXPECT_EQ(confReload(store), 0);
            EXPECT_EQ(confDeleteInstance(store, "A"), 0);
            EXPECT_EQ(confCommit(store), 0);
        }
        done = true;
    });
    int fatal = 0;
    while (!done) {
        const ConfInstanceValues values(store, &column, 1);
        for (std::size_t i = 0; i < values.size(); ++i) fatal += values.value(i, 0) ? 0 : 1;
    }
    deleting.join();
    EXPECT_EQ(fatal, 0);
}
