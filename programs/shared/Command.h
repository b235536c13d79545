#ifndef SHARED_COMMAND_H
#define SHARED_COMMAND_H

#include "shared/ExitCode.h"

class OptionParser;
class Session;

// A command of the program. Each file in commands/ defines one, in a constant named "command" and
// the file's name, and is all that a new command takes.
struct Command {
    const char* group;    // "conf" in "conf get"; empty for a command of its own
    const char* name;     // "get"
    const char* summary;  // one line of the help
    const char* details;  // what else the command's own help says, with an example

    // Adds the command's options and arguments, and its work as what happens when it is given. Null
    // for a group of commands, which has neither.
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
