#ifndef TESTS_WAITUNTIL_H
#define TESTS_WAITUNTIL_H

#include "support/Platform.h"

// Waits until the condition holds, for at most 10 seconds. Returns whether it does.
template <typename Condition>
bool waitUntil(Condition condition) {
    for (int i = 0; i < 2000; ++i) {
        if (condition()) return true;
        sleepMs(5);
    }
    return condition();
}

#endif
