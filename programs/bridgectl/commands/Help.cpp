// bridgectl help [COMMAND]
#include "Session.h"
#include "shared/Command.h"
#include "shared/HelpCommand.h"

namespace {

void declare(OptionParser& parser, Session& session) { declareHelp(parser, session); }

}  // namespace

extern const Command commandHelp;
const Command commandHelp{"Help",
                          "",
                          "help",
                          "Print the help of the program or of a command",
                          "Example: bridgectl help conf set",
                          declare};
