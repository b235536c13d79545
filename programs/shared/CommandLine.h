#ifndef SHARED_COMMANDLINE_H
#define SHARED_COMMANDLINE_H

#include <string>
#include <utility>
#include <vector>

#include "shared/Command.h"
#include "shared/ProgramRun.h"

// What a program's command line has beside its commands.
struct Program {
    const char* description;  // one line of the help
    std::string version;      // what --version prints

    // Adds the options in front of the command.
    void (*declareOptions)(OptionParser& parser, Session& session);

    // Adds the options that every command has; null when there are none.
    void (*declareCommonOptions)(OptionParser& parser, Session& session);

    // Commands that people look for here and another program has: the name, and where it is.
    std::vector<std::pair<const char*, const char*>> elsewhere;
};

// All that main() does: parses this process's command line, does the command's work and answers the
// exit code, which the work leaves in `run`, the session's base. Nothing that this process starts
// inherits its standard handles.
int runCommandLine(const Program& program, Session& session, ProgramRun& run) noexcept;

#endif
