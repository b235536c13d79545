#include "support/SystemAbilities.h"

bool appendsAreAtomic() { return true; }  // POSIX: O_APPEND
