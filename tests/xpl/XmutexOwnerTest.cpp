// Who owns the mutex, where the numbers of threads are given again.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wthread-safety-analysis"
#endif

#include <unistd.h>

#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "xpl/XmutexNamed.h"

namespace {

// Runs `what` in a thread with that number. False where the system does not give it.
template <typename What>
bool runAsThread(pid_t number, What what) {
    bool hasRun = false;
    for (int attempt = 0; attempt < 20 && !hasRun; ++attempt) {
        std::ofstream("/proc/sys/kernel/ns_last_pid") << number - 1;
        std::thread([&] {
            if (::gettid() != number) return;
            what();
            hasRun = true;
        }).join();
    }
    return hasRun;
}

bool isFree(const std::string& name) {
    bool acquired = false;
    std::thread([&] {
        XmutexNamed mutex;
        if (mutex.init(name) != 0) return;
        acquired = mutex.try_lock();
        if (acquired) mutex.unlock();
    }).join();
    return acquired;
}

}  // namespace

SUBPROCESS(tellsItsNumberAndEndsWithTheMutex) {
    static XmutexNamed& mutex = *new XmutexNamed;
    if (mutex.init(arguments[0]) != 0) return 1;
    mutex.lock();
    std::printf("%d", ::gettid());
    std::fflush(stdout);
    std::_Exit(0);
}

TEST(XmutexNamed, AThreadWithTheNumberOfADeadHolderTakesTheMutexAsAnyOther) {
    const std::string name = "Global\\vtr_test_owner" + std::to_string(::getpid());
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    const ChildResult dead = runSubprocess("tellsItsNumberAndEndsWithTheMutex", {name});
    ASSERT_EQ(dead.status, 0u);
    bool isFreeMeanwhile = true;
    const bool hasRun = runAsThread(std::atoi(dead.out.c_str()), [&] {
        mutex.lock();
        isFreeMeanwhile = isFree(name);
        mutex.unlock();
    });
    if (!hasRun) GTEST_SKIP() << "needs the right to choose the next thread's number";
    EXPECT_FALSE(isFreeMeanwhile);
    EXPECT_TRUE(isFree(name));
}
