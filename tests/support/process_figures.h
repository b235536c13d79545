#ifndef TESTS_PROCESS_FIGURES_H
#define TESTS_PROCESS_FIGURES_H

#ifdef __cplusplus
extern "C" {
#endif

/*
 * How many handles this process has. Read from the system's table of all handles, since
 * GetProcessHandleCount answers 0 under Wine.
 */
long openHandles(void);

/*
 * What may be taken meanwhile once and for good, whatever the test does: Qt has 16 events for its
 * mutexes from when two threads first meet at one, and a worker thread of the system has a few. A
 * leak is looked for over many more rounds than this.
 */
enum { HANDLES_OF_THE_SYSTEM = 20 };

/*
 * Bytes in use on this process's heaps. The counters of private memory do not serve: one is 0 under
 * Wine, and the others move with the system's own worker threads.
 */
long long heapBytes(void);

/* Some milliseconds. */
void waitBriefly(void);

#ifdef __cplusplus
}
#endif

#endif
