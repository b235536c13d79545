#ifndef SHARED_CONSOLE_H
#define SHARED_CONSOLE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shared/TextStyle.h"

// Reserves standard output for printOut(). Anything else in this process that prints there, such as
// a library without an open log, prints on standard error from then on.
void takeStandardOutput();

// Print UTF-8 text: unchanged into files and pipes, converted on a console. printOut() returns
// false if not all text was written.
bool printOut(std::string_view text);
void printError(std::string_view text);

// Prints on standard error without marking an error.
void printNotice(std::string_view text);

// The size of the terminal of standard output, with escape sequences enabled. Empty if it is not a
// terminal.
struct ScreenSize {
    std::size_t columns = 80;
    std::size_t rows = 24;
};
std::optional<ScreenSize> outputSize();

// The style for a stream. Enables colours on a terminal.
TextStyle outputStyle();
TextStyle errorStyle();

// Sets a function that is called on another thread when the user presses Ctrl-C or Ctrl-Break or
// closes the console. main() should return soon afterwards. The second time ends the program at
// once.
void onConsoleEnd(void (*end)());

// Makes the standard handles non-inheritable. A child that inherits a pipe keeps it open, and its
// reader waits for the child's end.
void keepStandardHandles();

// The arguments after the program's name.
std::vector<std::string> commandLineArguments();

// The prefix of error messages. Each program defines its own.
extern const char* const programName;

#endif
