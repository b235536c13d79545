#ifndef TESTS_PROCESS_FIGURES_H
#define TESTS_PROCESS_FIGURES_H

#ifdef __cplusplus
extern "C" {
#endif

/*
 * The number of handles of this process. Under Wine, where GetProcessHandleCount returns 0, it
 * tries each handle.
 */
long openHandles(void);

/*
 * Handles that are allocated once during any test: Qt creates 16 events for its mutexes when two
 * threads first contend for one, and a worker thread of the system has a few. Tests for leaks play
 * many more rounds than this.
 */
enum { HANDLES_OF_THE_SYSTEM = 20 };

/*
 * Bytes in use on this process's heaps. The counters of private memory cannot be used: one is 0
 * under Wine, and the others change with the system's worker threads.
 */
long long heapBytes(void);

/* Waits a few milliseconds. */
void waitBriefly(void);

#ifdef __cplusplus
}
#endif

#endif
