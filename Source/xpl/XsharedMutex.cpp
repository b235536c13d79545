// A reader-writer lock made of several locks.
#include "xpl/XsharedMutex.h"

#include <atomic>

namespace {

// A number per thread, assigned in turn.
std::size_t thisThread() {
    static std::atomic<std::size_t> threads{0};
    thread_local std::size_t number = 0;
    if (number == 0) number = ++threads;
    return number;
}

}  // namespace

XslimLock& XsharedMutex::ofThisThread() { return readers_[thisThread() % readers_.size()]; }

void XsharedMutex::lock() {
    writers_.lock();
    for (XslimLock& lock : readers_) lock.lock();
}

void XsharedMutex::unlock() {
    for (XslimLock& lock : readers_) lock.unlock();
    writers_.unlock();
}

void XsharedMutex::lock_shared() { ofThisThread().lockShared(); }

void XsharedMutex::unlock_shared() { ofThisThread().unlockShared(); }
