#ifndef SHARED_HELPCOMMAND_H
#define SHARED_HELPCOMMAND_H

#include "shared/ProgramRun.h"

class OptionParser;

// Declares "help [COMMAND...]", which prints the help of a command of the parser's program.
void declareHelp(OptionParser& parser, ProgramRun& run);

#endif
