#ifndef TESTS_SYSTEMABILITIES_H
#define TESTS_SYSTEMABILITIES_H

// What some systems do and others do not. The answer comes from trying it, never from a system's
// name or version, and without the library.

// Whether writes to the end of a file are whole there, whoever else writes at the same time.
bool appendsAreAtomic();

// Whether a file is moved onto one that must not be written.
bool readOnlyFilesAreReplaced();

#endif
