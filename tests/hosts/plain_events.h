/*
 * The plain host's callbacks, and what it does with events:
 *
 *     register MASK        registers the callbacks whose bits are set: 1 for slot 1, 256 for slot 9
 *     reenter MASK PATH    the same; each callback first calls every other function, and commits
 *                          to PATH, too
 *     block MS             the next callback takes that long
 *     blockuntil PATH      the next callback waits until the file exists
 *     quiet                counts and sums events instead of printing them
 *     digest               prints the sum of the lines that were not printed
 *     served CLIENT        waits until the client's event server can be connected to
 *     wait N               waits for N events since the start
 *     waitbegun N          waits until N callbacks have been entered
 *     steady               prints "noted", and after the last batch the growth of one (growth.h)
 *     loadunload PATH N I  loads and unloads a copy of the library N times; every other time with
 *                          an event, a commit and a request to the player I
 *     loadonly PATH        loads and unloads a copy without bridgeApiFini
 *     plugin PATH          loads a DLL and keeps it
 *     exit | exitthread    ends the process at once, from the main or from another thread
 */
#ifndef TESTS_HOSTS_PLAIN_EVENTS_H
#define TESTS_HOSTS_PLAIN_EVENTS_H

#include <windows.h>

#include "support/growth.h"

/* The script's next argument: UTF-8 with NULL for "(null)", or unchanged. */
const char* next(void);
const WCHAR* nextWide(void);

/* Waits until the file exists. */
void awaitFile(const WCHAR* path);

/* Print a line in one piece, while other threads print too. */
void printLine(const char* line);
void printNumber(const char* name, int number);

/* Prints the growth of a batch, as "NAME: handles H, bytes B". */
void printGrowth(const char* name, const Growth* growth);

/* Zero when the operation is none of those above. */
int eventOperation(const char* name);

/* Call on the main thread before the first operation. */
void prepareEvents(void);

#endif
