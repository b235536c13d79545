#ifndef XPL_XSHAREDMUTEX_H
#define XPL_XSHAREDMUTEX_H

#include <array>
#include <cstddef>

#include "xpl/Xattributes.h"

// The system's reader-writer lock: SRWLOCK on Windows. Not recursive, not even for readers.
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
    // The system's object, padded so that two locks never share a cache line.
    void* words_[16] = {};
};

// A reader-writer lock for memory that is read often and changed briefly. Not recursive, not even
// for readers.
//
// Contains two system locks: a reader takes the one of its thread, a writer takes both. With a
// single lock two reading threads get no more done than one, since both write to the lock's cache
// line; with two they get nearly twice as much.
class XTS_CAPABILITY("mutex") XsharedMutex {
 public:
    void lock() XTS_ACQUIRE();
    void unlock() XTS_RELEASE();

    void lock_shared() XTS_ACQUIRE_SHARED();
    void unlock_shared() XTS_RELEASE_SHARED();

 private:
    XslimLock& ofThisThread();

    // Serialises writers. Without it writers would queue at a reader lock, which then admits no
    // readers.
    XslimLock writers_;
    std::array<XslimLock, 2> readers_;
};

// Holds a shared lock for its lifetime.
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
