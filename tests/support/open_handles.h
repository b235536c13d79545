#ifndef TESTS_OPEN_HANDLES_H
#define TESTS_OPEN_HANDLES_H

#ifdef __cplusplus
extern "C" {
#endif

/*
 * How many handles this process has. Read from the system's table of all handles, since
 * GetProcessHandleCount answers 0 under Wine.
 */
long openHandles(void);

#ifdef __cplusplus
}
#endif

#endif
