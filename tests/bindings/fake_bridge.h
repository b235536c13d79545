/* How the functions of the stand-in record their calls. */
#ifndef TESTS_BINDINGS_FAKE_BRIDGE_H
#define TESTS_BINDINGS_FAKE_BRIDGE_H

#include <bridge/bridge.h>

/* Records a call and returns the code that the test has set. */
bridge_i32 note(const char* format, ...);

const char* shown(const char* text);

/* A text for the caller to free; null for the key "null". */
char* textFor(const char* key, const char* text);

#endif
