// Contains misuse that the compiler's thread-safety analysis would reject.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wthread-safety-analysis"
#endif

#include <regex>

#include "support/FatalBreak.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/TestHeaders.h"
#include "support/process_figures.h"
#include "xpl/XmutexNamed.h"

namespace {

constexpr XlogModule kModule{XlogTag::CONF, "Tests"};

std::string uniqueName(const char* text) {
    return "Global\\vtr_test_" + std::string(text) + std::to_string(ownProcessId());
}

// Takes the mutex in another thread if it is free, and releases it.
bool isFreeForOthers(XmutexNamed& mutex) {
    bool acquired = false;
    std::thread([&] {
        acquired = mutex.try_lock();
        if (acquired) mutex.unlock();
    }).join();
    return acquired;
}

// The log of a subprocess: on standard output with functions, or off.
class ChildLog {
 public:
    explicit ChildLog(const SubprocessArguments& arguments) {
        EXPECT_EQ(xlogLibInit(nullptr, ""), 0);
        xlogSetDisplay(/*showFile=*/false, /*showFunction=*/true, /*showLine=*/false);
        if (!arguments.empty() && arguments.back() == "silent") off_.emplace();
    }

 private:
    std::optional<LogOff> off_;
};

// The lines of a fatal break in a function of the mutex.
Lines brokenIn(const std::string& function, const std::string& error) {
    return {"E XMUTEX  " + function + " " + function + ": " + error,
            logged::fatalBreak("XMUTEX", "Source/xpl/XmutexWinnt", "XmutexNamed::" + function)};
}

// With the milliseconds as "N".
Lines withoutTimes(Lines lines) {
    static const std::regex time(" [0-9]+ ms$");
    for (std::string& line : lines) line = std::regex_replace(line, time, " N ms");
    return lines;
}

int millisecondsOf(const std::string& line) {
    const std::size_t end = line.rfind(" ms");
    return std::stoi(line.substr(line.rfind(' ', end - 1) + 1));
}

// A mutex with a unique name, and the log.
class XmutexTest : public ::testing::Test {
 protected:
    void SetUp() override { ASSERT_EQ(mutex.init(name), 0); }

    const std::string name =
        uniqueName(::testing::UnitTest::GetInstance()->current_test_info()->name());
    XmutexNamed mutex;
    LogCapture log;
};

using XnamedGuardTest = XmutexTest;

}  // namespace

// Holds the mutex until it is killed.
SUBPROCESS(holdsMutex) {
    XmutexNamed mutex;
    if (mutex.init(arguments[0]) != 0) return 1;
    const std::lock_guard<XmutexNamed> guard(mutex);
    std::puts("held");
    std::fflush(stdout);
    sleepMs(60'000);
    return 0;
}

SUBPROCESS(exitsWithoutUnlocking) {
    static XmutexNamed& mutex = *new XmutexNamed;
    if (mutex.init(arguments[0]) != 0) return 1;
    mutex.lock();
    std::_Exit(0);
}

TEST_F(XmutexTest, LocksAndUnlocks) {
    mutex.lock();
    EXPECT_TRUE(mutex.try_lock()) << "recursive for its thread";
    mutex.unlock();
    mutex.unlock();
}

TEST_F(XmutexTest, TheSecondCreationOpensTheSameMutex) {
    XmutexNamed second;
    ASSERT_EQ(second.init(name), 0);
    mutex.lock();
    EXPECT_FALSE(isFreeForOthers(second));
    mutex.unlock();
}

TEST_F(XmutexTest, AMutexHeldByAnotherProcessIsNotAcquired) {
    ChildProcess holder = startSubprocess("holdsMutex", {name});
    ASSERT_EQ(holder.readLine(), "held");
    EXPECT_FALSE(mutex.try_lock());
    holder.kill();
    EXPECT_TRUE(mutex.try_lock()) << "a dead holder's mutex is taken over";
    mutex.unlock();
}

TEST_F(XmutexTest, TheMutexOfAHolderThatExitsWithoutUnlockIsTakenOver) {
    ASSERT_EQ(runSubprocess("exitsWithoutUnlocking", {name}).status, 0u);
    mutex.lock();
    mutex.unlock();
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();
}

TEST_F(XmutexTest, InitOnAnInitialisedObjectClosesTheOldHandle) {
    const long before = openHandles();
    for (int i = 0; i < 50; ++i) ASSERT_EQ(mutex.init(name), 0);
    EXPECT_EQ(openHandles(), before);
}

TEST_F(XmutexTest, ANameThatIsNotUtf8IsRefused) {
    EXPECT_EQ(mutex.init("\xFF"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::mutexNotMade("\xFF", "1113")});
}

TEST_F(XmutexTest, TryLockOfAFailedWaitIsLoggedAndNotAcquired) {
    XmutexNamed uninitialised;
    EXPECT_FALSE(uninitialised.try_lock());
    EXPECT_EQ(log.texts(), Lines{"E XMUTEX try_lock: Error in try_lock, GetLastError: 6"});
}

SUBPROCESS(locksUninitialised) {
    const ChildLog log(arguments);
    XmutexNamed mutex;
    mutex.lock();
    mutex.unlock();
    return 0;
}

TEST_F(XmutexTest, LockOfAFailedWaitIsFatal) {
    EXPECT_EQ(linesUntilBreak("locksUninitialised"),
              brokenIn("lock", "Error in taking lock, GetLastError: 6"));
}

SUBPROCESS(unlocksUnowned) {
    const ChildLog log(arguments);
    XmutexNamed mutex;
    if (mutex.init(arguments[0]) != 0) return 1;
    mutex.unlock();
    return 0;
}

TEST_F(XmutexTest, AReleaseThatFailsIsFatal) {
    EXPECT_EQ(linesUntilBreak("unlocksUnowned", {uniqueName("unowned")}),
              brokenIn("unlock", "Error in unlocking, GetLastError: 288"));
}

TEST_F(XnamedGuardTest, HoldsTheMutexAndLogsNothing) {
    {
        const XnamedGuard guard(mutex, kModule, "work");
        XmutexNamed other;
        ASSERT_EQ(other.init(name), 0);
        EXPECT_FALSE(isFreeForOthers(other));
        const XnamedGuard again(mutex, kModule, "work");
    }
    EXPECT_TRUE(isFreeForOthers(mutex));
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(XnamedGuardTest, AWaitOfMoreThanASecondIsLoggedThenAndWhenItEnds) {
    mutex.lock();
    std::thread waiting([&] { const XnamedGuard guard(mutex, kModule, "work"); });
    while (log.texts().empty()) sleepMs(10);
    EXPECT_EQ(withoutTimes(log.texts()), Lines{logged::lockAwaited("work", name)});
    sleepMs(200);
    mutex.unlock();
    waiting.join();
    const Lines lines = log.texts(XLOG_VERBOSE);
    EXPECT_EQ(withoutTimes(lines),
              (Lines{logged::lockAwaited("work", name), logged::lockObtained("work", name)}));
    EXPECT_GE(millisecondsOf(lines[0]), 1000);
    EXPECT_GE(millisecondsOf(lines[1]), millisecondsOf(lines[0]) + 200);
}

TEST_F(XnamedGuardTest, AShortWaitIsNotLogged) {
    mutex.lock();
    std::thread waiting([&] { const XnamedGuard guard(mutex, kModule, "work"); });
    sleepMs(100);
    mutex.unlock();
    waiting.join();
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

SUBPROCESS(guardsNoMutex) {
    XmutexNamed mutex;
    const XnamedGuard guard(mutex, kModule, "work");
    return 0;
}

TEST_F(XnamedGuardTest, AWaitThatFailsIsFatal) {
    for (const std::string& line : linesUntilBreak("guardsNoMutex")) {
        EXPECT_EQ(line.find("waiting for"), std::string::npos) << line;
    }
}
