#ifndef BRIDGECTL_PROGRAMCOMMAND_H
#define BRIDGECTL_PROGRAMCOMMAND_H

#include <string>
#include <vector>

#include "Outcome.h"
#include "Session.h"

class OptionParser;

// A command that starts one of the product's programs: it passes its arguments to one function of
// the library.
struct ProgramArgument {
    const char* name;
    const char* help;
};

using ProgramTexts = std::vector<std::string>;

struct ProgramCall {
    const char* function;  // of the library
    int (*call)(const ProgramTexts& texts);
    OutcomeOf outcomeOf = nullptr;  // for --wait; null if no event reports the result
};

// Declares the arguments, all required, and the call as the command's action. The command fails if
// the registry has no install folder or the instance in INSTANCE does not exist. With --wait, it
// ends at the event that reports the result.
void declareProgram(OptionParser& parser, Session& session,
                    const std::vector<ProgramArgument>& arguments, const ProgramCall& call);

#endif
