// bridgeadm help [COMMAND]
#include "Session.h"
#include "bridgectl/Command.h"
#include "bridgectl/HelpCommand.h"

namespace {

void declare(OptionParser& parser, Session& session) { declareHelp(parser, session); }

}  // namespace

extern const Command commandHelp;
const Command commandHelp{"", "help", "Explains a command", "Example: bridgeadm help copy-instance",
                          declare};
