/* How the functions of the stand-in write down that they were called. */
#ifndef TESTS_BINDINGS_FAKE_BRIDGE_H
#define TESTS_BINDINGS_FAKE_BRIDGE_H

#include <bridge/bridge.h>

/* Adds a line to the calls, and returns the code that the test wants. */
bridge_i32 note(const char* format, ...);

const char* shown(const char* text);

/* What the functions return that return a text: null for the key "null". */
char* textFor(const char* key, const char* text);

#endif
