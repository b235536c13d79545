#ifndef SHARED_COMMANDLINE_H
#define SHARED_COMMANDLINE_H

#include <string>
#include <utility>
#include <vector>

#include "shared/Command.h"
#include "shared/ExitCode.h"
#include "shared/ProgramRun.h"

// A program's command line apart from its commands.
struct Program {
    const char* description;  // one line of help
    std::string version;      // printed by --version

    std::vector<const char*> sections;  // of the help, in order; every command is in one of them
    std::vector<ExitCode> exitCodes;    // those that the help explains

    // Adds the options before the command.
    void (*declareOptions)(OptionParser& parser, Session& session);

    // Adds the options that every command has. Null if there are none.
    void (*declareCommonOptions)(OptionParser& parser, Session& session);

    // Commands of another program that people may try here, each with a hint.
    std::vector<std::pair<const char*, const char*>> elsewhere;
};

// Does all the work of main(): parses the command line of this process, runs the command and
// returns the exit code, which the command leaves in `run`, the base of the session. Child
// processes do not inherit the standard handles.
int runCommandLine(const Program& program, Session& session, ProgramRun& run) noexcept;

#endif
