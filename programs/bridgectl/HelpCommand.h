#ifndef BRIDGECTL_HELPCOMMAND_H
#define BRIDGECTL_HELPCOMMAND_H

#include "ProgramRun.h"

namespace CLI {
class App;
}

// Declares "help [COMMAND]", which explains the commands of the parser's program.
void declareHelp(CLI::App& parser, ProgramRun& run);

#endif
