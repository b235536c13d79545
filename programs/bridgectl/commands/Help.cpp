// bridgectl help [COMMAND]
#include "Command.h"
#include "HelpCommand.h"
#include "Session.h"

namespace {

void declare(OptionParser& parser, Session& session) { declareHelp(parser, session); }

}  // namespace

extern const Command commandHelp;
const Command commandHelp{"", "help", "Explains a command", "Example: bridgectl help conf set",
                          declare};
