#ifndef FUZZ_QUIETLOG_H
#define FUZZ_QUIETLOG_H

// From here on every line of the log is formatted, and goes nowhere.
void logIntoNothing();

// From here on this is called for the line of a fatal break, before the break ends the process.
void logCallAtFatalBreak(void (*atFatalBreak)());

#endif
