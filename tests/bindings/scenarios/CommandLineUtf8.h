#ifndef TESTS_BINDINGS_COMMANDLINEUTF8_H
#define TESTS_BINDINGS_COMMANDLINEUTF8_H

#include <string>
#include <vector>

// The words of this process's command line, whatever the system's code page is.
std::vector<std::string> commandLineUtf8();

// Standard output without buffering and without "\r".
void printBytes();

#endif
