#ifndef TESTS_SYSTEMABILITIES_H
#define TESTS_SYSTEMABILITIES_H

// Whether concurrent writes to the end of a file are atomic on this system. Tries it, without the
// library.
bool appendsAreAtomic();

#endif
