// SRWLOCK, which needs no handle and no clean-up.
#include "xpl/XsharedMutex.h"
#include "xpl/XwindowsLean.h"

namespace {

SRWLOCK* srw(void** words) {
    static_assert(sizeof(SRWLOCK) <= sizeof(void*));
    return reinterpret_cast<SRWLOCK*>(words);
}

}  // namespace

XslimLock::XslimLock() { ::InitializeSRWLock(srw(words_)); }

XslimLock::~XslimLock() = default;

void XslimLock::lock() { ::AcquireSRWLockExclusive(srw(words_)); }

void XslimLock::unlock() { ::ReleaseSRWLockExclusive(srw(words_)); }

void XslimLock::lockShared() { ::AcquireSRWLockShared(srw(words_)); }

void XslimLock::unlockShared() { ::ReleaseSRWLockShared(srw(words_)); }
