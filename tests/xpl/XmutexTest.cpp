// The compiler refuses much of what is tried here, which is what it is for.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wthread-safety-analysis"
#endif

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/LogCapture.h"
#include "support/Platform.h"
#include "support/Subprocess.h"
#include "support/process_figures.h"
#include "xpl/XmutexNamed.h"

namespace {

std::string uniqueName(const char* text) {
    return "Global\\vtr_test_" + std::string(text) + std::to_string(ownProcessId());
}

using Lines = std::vector<std::string>;

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
    EXPECT_EQ(log.texts(), Lines{"E XMUTEX Failed to create mutex '\xFF'. Error = 1113"});
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
    const ChildResult result = runSubprocess("locksUninitialised");
    EXPECT_EQ(result.status, kFatalStatus);
    EXPECT_NE(result.out.find("lock: Error in taking lock, GetLastError: 6"), std::string::npos);
    EXPECT_NE(result.out.find("XmutexNamed::lock FATAL: DEBUG BREAK: Source/xpl/XmutexWinnt:"),
              std::string::npos)
        << result.out;
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
    const ChildResult result = runSubprocess("unlocksUnowned", {uniqueName("g")});
    EXPECT_EQ(result.status, kFatalStatus);
    EXPECT_NE(result.out.find("unlock: Error in unlocking, GetLastError: 288"), std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("XmutexNamed::unlock FATAL: DEBUG BREAK: Source/xpl/XmutexWinnt:"),
              std::string::npos)
        << result.out;
}
