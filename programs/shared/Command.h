#ifndef SHARED_COMMAND_H
#define SHARED_COMMAND_H

#include "shared/ExitCode.h"

class OptionParser;
class Session;

// A command of the program. Each file in commands/ defines one, in a constant named "command" plus
// the file's name. CMake adds it to the table; nothing else lists the commands.
struct Command {
    const char* section;  // heading in the program's help; one of Program::sections
    const char* group;    // "conf" in "conf get"; empty for a top-level command
    const char* name;     // "get"
    const char* summary;  // one line of help
    const char* details;  // examples and notes, in the form that HelpText.h describes

    // Adds the command's options and arguments, and its action. Null for a group of commands.
    void (*declare)(OptionParser& parser, Session& session);
};

struct CommandList {
    const Command* const* first;
    const Command* const* last;
    const Command* const* begin() const { return first; }
    const Command* const* end() const { return last; }
};

CommandList allCommands();

#endif
