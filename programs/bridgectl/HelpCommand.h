#ifndef BRIDGECTL_HELPCOMMAND_H
#define BRIDGECTL_HELPCOMMAND_H

#include "ProgramRun.h"

class OptionParser;

// Declares "help [COMMAND]", which explains the commands of the parser's program.
void declareHelp(OptionParser& parser, ProgramRun& run);

#endif
