#ifndef BRIDGECTL_PROGRAMCOMMAND_H
#define BRIDGECTL_PROGRAMCOMMAND_H

#include <string>
#include <vector>

#include "Outcome.h"
#include "Session.h"

class OptionParser;

// A command that starts one of the product's programs: positional texts in, one call, its status.
struct ProgramArgument {
    const char* name;
    const char* help;
};

using ProgramTexts = std::vector<std::string>;

struct ProgramCall {
    const char* function;  // of the library
    int (*call)(const ProgramTexts& texts);
    OutcomeOf outcomeOf = nullptr;  // for --wait; null when no event reports the work
};

// Declares the arguments, all required, and the call as the command's work. Like every command it
// starts the library first; besides, the registry must name the install folder, and an INSTANCE
// must exist. With --wait it ends when an event has said how the work ended.
void declareProgram(OptionParser& parser, Session& session,
                    const std::vector<ProgramArgument>& arguments, const ProgramCall& call);

#endif
