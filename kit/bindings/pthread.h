/* The thread functions that tests/bindings/fake_bridge.c uses, for Windows. */
#ifndef KIT_BINDINGS_PTHREAD_H
#define KIT_BINDINGS_PTHREAD_H

#include <stdint.h>
#include <stdlib.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

typedef SRWLOCK pthread_mutex_t;
#define PTHREAD_MUTEX_INITIALIZER SRWLOCK_INIT

static inline void pthread_mutex_lock(pthread_mutex_t* mutex) { AcquireSRWLockExclusive(mutex); }
static inline void pthread_mutex_unlock(pthread_mutex_t* mutex) { ReleaseSRWLockExclusive(mutex); }

typedef HANDLE pthread_t;

typedef struct {
    void* (*run)(void* argument);
    void* argument;
} KitThread;

static DWORD WINAPI kitRunThread(void* memory) {
    const KitThread thread = *(KitThread*)memory;
    free(memory);
    thread.run(thread.argument);
    return 0;
}

static inline void pthread_create(pthread_t* thread, const void* attributes, void* (*run)(void*),
                                  void* argument) {
    KitThread* const memory = (KitThread*)malloc(sizeof *memory);
    (void)attributes;
    memory->run = run;
    memory->argument = argument;
    *thread = CreateThread(NULL, 0, kitRunThread, memory, 0, NULL);
}

static inline void pthread_join(pthread_t thread, void** result) {
    (void)result;
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

#endif
