// The compiler refuses much of what is tried here, which is what it is for.
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

std::string uniqueName(const char* text) {
    return "Global\\vtr_test_" + std::string(text) + std::to_string(ownProcessId());
}

}  // namespace

// Holds the mutex until it is killed or told to end.
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

TEST(XmutexNamed, LocksAndUnlocks) {
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(uniqueName("a")), 0);
    mutex.lock();
    EXPECT_TRUE(mutex.try_lock()) << "recursive for its thread";
    mutex.unlock();
    mutex.unlock();
}

TEST(XmutexNamed, TheSecondCreationOpensTheSameMutex) {
    const std::string name = uniqueName("b");
    XmutexNamed first;
    XmutexNamed second;
    ASSERT_EQ(first.init(name), 0);
    ASSERT_EQ(second.init(name), 0);
    first.lock();
    bool acquired = true;
    std::thread([&]() {
        acquired = second.try_lock();
        if (acquired) second.unlock();
    }).join();
    EXPECT_FALSE(acquired);
    first.unlock();
}

TEST(XmutexNamed, AMutexHeldByAnotherProcessIsNotAcquired) {
    const std::string name = uniqueName("c");
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    ChildProcess holder = startSubprocess("holdsMutex", {name});
    ASSERT_EQ(holder.readLine(), "held");
    EXPECT_FALSE(mutex.try_lock());
    holder.kill();
    EXPECT_TRUE(mutex.try_lock()) << "a dead holder is taken over from";
    mutex.unlock();
}

TEST(XmutexNamed, AHolderThatExitsWithoutUnlockIsTakenOverFrom) {
    const std::string name = uniqueName("d");
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    ASSERT_EQ(runSubprocess("exitsWithoutUnlocking", {name}).status, 0u);
    mutex.lock();
    mutex.unlock();
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();
}

TEST(XmutexNamed, InitOnAnInitialisedObjectClosesTheOldHandle) {
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(uniqueName("e")), 0);
    const long before = openHandles();
    for (int i = 0; i < 50; ++i) ASSERT_EQ(mutex.init(uniqueName("e")), 0);
    EXPECT_EQ(openHandles(), before);
}

TEST(XmutexNamed, ANameThatIsNotUtf8IsRefused) {
    const LogCapture log;
    XmutexNamed mutex;
    EXPECT_EQ(mutex.init("\xFF"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::mutexNotMade("\xFF", "1113")});
}

TEST(XmutexNamed, TryLockOfAFailedWaitIsLoggedAndNotAcquired) {
    const LogCapture log;
    XmutexNamed mutex;
    const bool acquired = mutex.try_lock();
    EXPECT_FALSE(acquired);
    if (acquired) mutex.unlock();
    EXPECT_EQ(log.texts(), Lines{"E XMUTEX try_lock: Error in try_lock, GetLastError: 6"});
}

SUBPROCESS(locksUninitialised) {
    if (xlogLibInit(nullptr, "") != 0) return 1;
    xlogSetDisplay(/*showFile=*/false, /*showFunction=*/true, /*showLine=*/false);
    XmutexNamed mutex;
    mutex.lock();
    mutex.unlock();
    return 0;
}

TEST(XmutexNamed, LockOfAFailedWaitIsFatal) {
    EXPECT_EQ(linesUntilBreak("locksUninitialised"),
              (Lines{"E XMUTEX  lock lock: Error in taking lock, GetLastError: 6",
                     logged::fatalBreak("XMUTEX", "Source/xpl/XmutexWinnt", "XmutexNamed::lock")}));
}

SUBPROCESS(unlocksUnowned) {
    if (xlogLibInit(nullptr, "") != 0) return 1;
    xlogSetDisplay(/*showFile=*/false, /*showFunction=*/true, /*showLine=*/false);
    XmutexNamed mutex;
    if (mutex.init(arguments[0]) != 0) return 1;
    mutex.unlock();
    return 0;
}

TEST(XmutexNamed, AReleaseThatFailsIsFatal) {
    EXPECT_EQ(
        linesUntilBreak("unlocksUnowned", {uniqueName("g")}),
        (Lines{"E XMUTEX  unlock unlock: Error in unlocking, GetLastError: 288",
               logged::fatalBreak("XMUTEX", "Source/xpl/XmutexWinnt", "XmutexNamed::unlock")}));
}

namespace {

constexpr XlogModule kModule{XlogTag::CONF, "Tests"};

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

}  // namespace

TEST(XnamedGuard, HoldsTheMutexAndSaysNothing) {
    LogCapture log;
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(uniqueName("guard")), 0);
    {
        const XnamedGuard guard(mutex, kModule, "work");
        std::thread([&] {
            XmutexNamed other;
            ASSERT_EQ(other.init(mutex.name()), 0);
            EXPECT_FALSE(other.try_lock());
        }).join();
        const XnamedGuard again(mutex, kModule, "work");
    }
    std::thread([&] {
        EXPECT_TRUE(mutex.try_lock());
        mutex.unlock();
    }).join();
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST(XnamedGuard, AWaitOfMoreThanASecondIsToldWhenItIsLongAndWhenItEnds) {
    LogCapture log;
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(uniqueName("wait")), 0);
    mutex.lock();
    std::thread waiting([&] { const XnamedGuard guard(mutex, kModule, "work"); });
    while (log.texts().empty()) sleepMs(10);
    EXPECT_EQ(withoutTimes(log.texts()), Lines{logged::lockAwaited("work", mutex.name())});
    sleepMs(200);
    mutex.unlock();
    waiting.join();
    const Lines lines = log.texts(XLOG_VERBOSE);
    EXPECT_EQ(withoutTimes(lines), (Lines{logged::lockAwaited("work", mutex.name()),
                                          logged::lockObtained("work", mutex.name())}));
    EXPECT_GE(millisecondsOf(lines[0]), 1000);
    EXPECT_GE(millisecondsOf(lines[1]), millisecondsOf(lines[0]) + 200);
}

TEST(XnamedGuard, AShortWaitIsNotTold) {
    LogCapture log;
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(uniqueName("short")), 0);
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

TEST(XnamedGuard, AWaitThatFailsIsFatal) {
    for (const std::string& line : linesUntilBreak("guardsNoMutex")) {
        EXPECT_EQ(line.find("waiting for"), std::string::npos) << line;
    }
}
