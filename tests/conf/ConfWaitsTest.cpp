// The calls that a user interface's thread makes never wait for a disk, another program or the log.
#include "ConfFixture.h"
#include "HookedFiles.h"
#include "conf/ConfInstanceValues.h"
#include "support/Threads.h"
#include "xpl/XmutexNamed.h"

namespace {

using Step = HookedFiles::Step;

// Stops another thread at one point of its work until it may go on.
class Stop {
 public:
    // Called by that thread.
    void here() {
        reached_.set_value();
        mayGoOn_.get_future().wait();
    }
    bool waitUntilReached() {
        return reached_.get_future().wait_for(std::chrono::seconds(30)) ==
               std::future_status::ready;
    }
    void letGoOn() { mayGoOn_.set_value(); }

 private:
    std::promise<void> reached_;
    std::promise<void> mayGoOn_;
};

const char* const kDpi = "vtr.instance.A.dpi";

using Work = std::function<void(ConfStore&)>;

struct Call {
    const char* name;
    Work run;
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

    // A second store of the same configuration, with its own access to files.
    struct OtherStore : ConfStore {
        OtherStore(const ConfWaitsTest& test, ConfFiles& files) : ConfStore(test.catalogue, files) {
            fileLockName = test.store.fileLockName;
            EXPECT_EQ(confLibInit(*this, test.path(), false), 0);
        }
    };

    // A store with a change of kDpi. Another thread works on it and is stopped before a step of the
    // files until goOn().
    class Stopped {
     public:
        Stopped(const ConfWaitsTest& test, Step step, Work work)
            : files_([this, step](Step at) {
                  if (isArmed_ && at == step && ++reached_ == 1) stop_.here();
                  return XERR_SUCCESS;
              }),
              store_(test, files_) {
            confSetI32(store_, kDpi, confGetI32(store_, kDpi) + 1);
            isArmed_ = true;
            thread_ = std::thread([this, work] { work(store_); });
            EXPECT_TRUE(stop_.waitUntilReached());
        }
        ~Stopped() { goOn(); }

        void goOn() {
            if (!thread_.joinable()) return;
            stop_.letGoOn();
            thread_.join();
        }
        ConfStore& store() { return store_; }
        int reached() const { return reached_; }

     private:
        Stop stop_;
        std::atomic<bool> isArmed_{false};
        std::atomic<int> reached_{0};
        HookedFiles files_;
        OtherStore store_;
        std::thread thread_;
    };

    // Each call ends while the other thread is stopped.
    static void expectNoWait(ConfStore& store) {
        for (const Call& call : callsThatNeverWait()) {
            auto ended = std::async(std::launch::async, [&] { call.run(store); });
            const auto state = ended.wait_for(std::chrono::seconds(20));
            EXPECT_EQ(state, std::future_status::ready) << call.name;
            if (state != std::future_status::ready) return;  // one failure is enough
        }
    }

    void expectNoWaitAt(Step step, const Work& work) {
        Stopped stopped(*this, step, work);
        expectNoWait(stopped.store());
    }
};

void commit(ConfStore& store) { EXPECT_EQ(confCommit(store), 0); }

void reload(ConfStore& store) { EXPECT_EQ(confReload(store), 0); }

Stop* logStop = nullptr;

std::int32_t everyLine(std::int32_t, std::int32_t) { return 1; }

// Stops at a line that a commit logs.
std::int32_t slowPrint(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                       const char* format, ...) {
    if (std::string(format).rfind("xfileMove failed", 0) == 0) logStop->here();
    return 0;
}

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
            waitUntilLocked();
            expectNoWait(store);
        }
        worker.join();
    }
}

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
    Stopped stopped(*this, Step::Replace, commit);
    EXPECT_FALSE(confHasPendingChanges(stopped.store())) << "the change is in the text already";
    confSetI32(stopped.store(), "vtr.instance.A.ram", 5);
    stopped.goOn();
    EXPECT_TRUE(confIsPropPending(stopped.store(), "vtr.instance.A.ram"));
    EXPECT_FALSE(confIsPropPending(stopped.store(), kDpi));
    EXPECT_TRUE(hasLine("vtr.instance.A.dpi=\"2\""));
    EXPECT_TRUE(hasLine("vtr.instance.A.ram=\"1\""));
}

TEST_F(ConfWaitsTest, ASetBeforeTheMergeIsPartOfTheCommit) {
    Stopped stopped(*this, Step::Create, commit);
    confSetI32(stopped.store(), "vtr.instance.A.ram", 5);
    stopped.goOn();
    EXPECT_FALSE(confHasPendingChanges(stopped.store()));
    EXPECT_TRUE(hasLine("vtr.instance.A.ram=\"5\""));
}

// Two commits of one change: the second has nothing to do, but waits for the first.
TEST_F(ConfWaitsTest, ACommitWithoutChangesWaitsForTheOneThatRuns) {
    Stopped stopped(*this, Step::Replace, commit);
    auto second = std::async(std::launch::async, [&] { commit(stopped.store()); });
    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    stopped.goOn();
    second.get();
    EXPECT_EQ(stopped.reached(), 1);
}

// A read never finds the default of a key that the file has.
TEST_F(ConfWaitsTest, AnotherInitialisationShowsNoDefaultInBetween) {
    given("vtr.locale=\"of the file\"\n");
    whileRepeating(
        1, [this] { EXPECT_EQ(confGetString(store, "vtr.locale"), "of the file"); },
        [this] {
            for (int i = 0; i < 50; ++i) EXPECT_EQ(confLibInit(store, path(), false), 0);
        });
}

// Values that change together are seen together.
TEST_F(ConfWaitsTest, TheListingIsOfOneMoment) {
    const ConfColumn columns[] = {{"dpi", ConfType::I32}, {"ram", ConfType::I32}};
    const auto look = [&] {
        const ConfInstanceValues values(store, columns, 2);
        EXPECT_EQ(values.size(), 1u);
        EXPECT_EQ(values.value(0, 0), values.value(0, 1));
    };
    whileRepeating(1, look, [this] {
        for (int i = 0; i < 200; ++i) {
            const std::string number = "=\"" + std::to_string(i) + "\"\n";
            writeFile("vtr.instance.A.dpi" + number + "vtr.instance.A.ram" + number);
            reload(store);
        }
    });
}

// The commit of a removal reads the file, which still has the instance, and lists it again. It
// removes its keys in the same step.
TEST_F(ConfWaitsTest, AnInstanceIsNeverListedWhileItsKeysAreFatal) {
    const ConfColumn column{"dpi", ConfType::I32};
    const auto look = [&] {
        const ConfInstanceValues values(store, &column, 1);
        for (std::size_t i = 0; i < values.size(); ++i) EXPECT_TRUE(values.value(i, 0));
    };
    whileRepeating(1, look, [this] {
        for (int i = 0; i < 100; ++i) {
            writeFile("vtr.instance.A.dpi=\"1\"\n");
            reload(store);
            EXPECT_EQ(confDeleteInstance(store, "A"), 0);
            commit(store);
        }
    });
}
