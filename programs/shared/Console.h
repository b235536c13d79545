#ifndef SHARED_CONSOLE_H
#define SHARED_CONSOLE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shared/TextStyle.h"

// Keeps standard output for printOut(): whatever else of this process prints there, such as a
// library that has no log yet, prints on standard error from then on.
void takeStandardOutput();

// UTF-8 in and out: as it stands into files and pipes, converted for a console window. False when
// not all of it could be written.
bool printOut(std::string_view text);
void printError(std::string_view text);

// On standard error too, but nothing has failed.
void printNotice(std::string_view text);

// The window of standard output, which is made ready for sequences that move the cursor; nothing
// when it is no terminal.
struct ScreenSize {
    std::size_t columns = 80;
    std::size_t rows = 24;
};
std::optional<ScreenSize> outputSize();

// The style of a stream of this process, which is made ready to show colours.
TextStyle outputStyle();
TextStyle errorStyle();

// Calls a function, on a thread of its own, when the user ends the program with Ctrl-C or
// Ctrl-Break or closes the console; main() is to return soon then. A second time ends the program
// at once.
void onConsoleEnd(void (*end)());

// Keeps the standard handles from the programs that this one starts: they would hold a pipe open,
// and whoever reads it would wait for their end.
void keepStandardHandles();

// The arguments of the command line behind the program's name.
std::vector<std::string> commandLineArguments();

// What errors begin with. Each program defines its own.
extern const char* const programName;

#endif
