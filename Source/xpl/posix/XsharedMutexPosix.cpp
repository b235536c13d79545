// pthread_rwlock.
#include <pthread.h>

#include "xpl/XsharedMutex.h"

namespace {

pthread_rwlock_t* rwlock(void** words) { return reinterpret_cast<pthread_rwlock_t*>(words); }

}  // namespace

XslimLock::XslimLock() {
    static_assert(sizeof(pthread_rwlock_t) <= sizeof words_);
    pthread_rwlockattr_t attributes;
    ::pthread_rwlockattr_init(&attributes);
    // A steady stream of readers must not starve a writer.
    ::pthread_rwlockattr_setkind_np(&attributes, PTHREAD_RWLOCK_PREFER_WRITER_NONRECURSIVE_NP);
    ::pthread_rwlock_init(rwlock(words_), &attributes);
    ::pthread_rwlockattr_destroy(&attributes);
}

XslimLock::~XslimLock() { ::pthread_rwlock_destroy(rwlock(words_)); }

void XslimLock::lock() { ::pthread_rwlock_wrlock(rwlock(words_)); }

void XslimLock::unlock() { ::pthread_rwlock_unlock(rwlock(words_)); }

void XslimLock::lockShared() { ::pthread_rwlock_rdlock(rwlock(words_)); }

void XslimLock::unlockShared() { ::pthread_rwlock_unlock(rwlock(words_)); }
