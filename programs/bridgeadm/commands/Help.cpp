// bridgeadm help [COMMAND]
#include "Session.h"
#include "shared/Command.h"
#include "shared/HelpCommand.h"

namespace {

void declare(OptionParser& parser, Session& session) { declareHelp(parser, session); }

}  // namespace

extern const Command commandHelp;
const Command commandHelp{"Other",
                          "",
                          "help",
                          "Print the help of the program or of a command",
                          "Example: bridgeadm help copy-instance",
                          declare};
