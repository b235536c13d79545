#ifndef FUZZ_QUIETLOG_H
#define FUZZ_QUIETLOG_H

// From now on, log lines are formatted and discarded.
void logIntoNothing();

// Sets a function that is called when the line of a fatal break is logged, before the break ends
// the process.
void logCallAtFatalBreak(void (*atFatalBreak)());

#endif
