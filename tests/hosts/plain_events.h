/*
 * The plain host's callbacks, and what it does with events:
 *
 *     register MASK        registers the callbacks whose bits are set: 1 for slot 1, 256 for slot 9
 *     reenter MASK PATH    the same, and each call uses every other function first; it commits to
 *                          PATH, too
 *     block MS             the next callback takes that long
 *     quiet                events are counted and summed, and no longer printed
 *     digest               prints the sum of the lines that were not printed
 *     served CLIENT        waits until the client's event server can be connected to
 *     wait N               waits for N events since the start
 *     waitbegun N          the same for N callbacks that have been entered
 *     steady               prints "noted", and after the last batch what one adds (growth.h)
 *     loadunload PATH N I  loads, uses, finishes and unloads a copy of the library N times; every
 *                          other time with an event, a commit and a request to the player I
 *     loadonly PATH        loads and unloads a copy, without finishing
 *     plugin PATH          loads a DLL and keeps it
 *     exit | exitthread    ends the process at once, from the main or from another thread
 */
#ifndef TESTS_HOSTS_PLAIN_EVENTS_H
#define TESTS_HOSTS_PLAIN_EVENTS_H

#include <windows.h>

#include "support/growth.h"

/* The script's next argument, as UTF-8 and NULL for "(null)", or as it stands. */
const char* next(void);
const WCHAR* nextWide(void);

/* Print a line in one piece, whatever other threads print. */
void printLine(const char* line);
void printNumber(const char* name, int number);

/* Print what a batch adds, as "NAME: handles H, bytes B". */
void printGrowth(const char* name, const Growth* growth);

/* Zero when the operation is none of those above. */
int eventOperation(const char* name);

/* To be called on the main thread before the first operation. */
void prepareEvents(void);

#endif
