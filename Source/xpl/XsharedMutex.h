#ifndef XPL_XSHAREDMUTEX_H
#define XPL_XSHAREDMUTEX_H

#include <array>
#include <cstddef>

#include "xpl/Xattributes.h"

// The system's lock of readers and writers: SRWLOCK on Windows. Not recursive, not even for
// readers.
class XslimLock {
 public:
    XslimLock();
    ~XslimLock();
    XslimLock(const XslimLock&) = delete;
    XslimLock& operator=(const XslimLock&) = delete;

    void lock();
    void unlock();
    void lockShared();
    void unlockShared();

 private:
    // The system's object, and so much room that two locks never share a line of the cache.
    void* words_[16] = {};
};

// Guards memory that many threads read all the time and some change for moments: readers at the
// same time, or one writer. Not recursive, not even for readers.
//
// There are two of the system's locks: a reader takes the one of its thread, and a writer both.
// With one for all, two threads that read get no more done than one, since each of them has to
// write to it; with two they get nearly twice as much.
class XTS_CAPABILITY("mutex") XsharedMutex {
 public:
    void lock() XTS_ACQUIRE();
    void unlock() XTS_RELEASE();

    void lock_shared() XTS_ACQUIRE_SHARED();
    void unlock_shared() XTS_RELEASE_SHARED();

 private:
    XslimLock& ofThisThread();

    // Writers wait for each other here: while they queue for a lock, it lets no reader in.
    XslimLock writers_;
    std::array<XslimLock, 2> readers_;
};

// Reads as long as it lives.
class XTS_SCOPED_CAPABILITY XsharedGuard {
 public:
    explicit XsharedGuard(XsharedMutex& mutex) XTS_ACQUIRE_SHARED(mutex) : mutex_(mutex) {
        mutex_.lock_shared();
    }
    ~XsharedGuard() XTS_RELEASE() { mutex_.unlock_shared(); }
    XsharedGuard(const XsharedGuard&) = delete;
    XsharedGuard& operator=(const XsharedGuard&) = delete;

 private:
    XsharedMutex& mutex_;
};

#endif
