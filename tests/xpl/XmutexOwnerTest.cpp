// The owner of the mutex on systems that reuse thread ids.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wthread-safety-analysis"
#endif

#include <unistd.h>

#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "xpl/XmutexNamed.h"

namespace {

// Runs `what` in a thread with this id. False if the system does not assign it.
template <typename What>
bool runAsThread(pid_t id, What what) {
    bool hasRun = false;
    for (int attempt = 0; attempt < 20 && !hasRun; ++attempt) {
        std::ofstream("/proc/sys/kernel/ns_last_pid") << id - 1;
        std::thread([&] {
            if (::gettid() != id) return;
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

SUBPROCESS(printsItsThreadIdAndExitsWithTheMutex) {
    static XmutexNamed& mutex = *new XmutexNamed;
    if (mutex.init(arguments[0]) != 0) return 1;
    mutex.lock();
    std::printf("%d", ::gettid());
    std::fflush(stdout);
    std::_Exit(0);
}

TEST(XmutexNamed, AThreadWithTheIdOfADeadHolderTakesTheMutex) {
    const std::string name = "Global\\vtr_test_owner" + std::to_string(::getpid());
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    const ChildResult dead = runSubprocess("printsItsThreadIdAndExitsWithTheMutex", {name});
    ASSERT_EQ(dead.status, 0u);
    bool isFreeMeanwhile = true;
    const bool hasRun = runAsThread(std::atoi(dead.out.c_str()), [&] {
        mutex.lock();
        isFreeMeanwhile = isFree(name);
        mutex.unlock();
    });
    if (!hasRun) GTEST_SKIP() << "needs the right to choose the next thread's id";
    EXPECT_FALSE(isFreeMeanwhile);
    EXPECT_TRUE(isFree(name));
}
