// bridgectl install-image IMAGE
#include <bridge/bridge.h>

#include "ProgramCommand.h"
#include "shared/Command.h"

namespace {

int call(const ProgramTexts& texts) { return bridgeInstallImage(texts[0].c_str()); }

void declare(OptionParser& parser, Session& session) {
    declareProgram(parser, session, {{"IMAGE", "Name of the image"}},
                   {"bridgeInstallImage", call, installImageOutcome});
}

}  // namespace

extern const Command commandInstallImage;
const Command commandInstallImage{"", "install-image", "Installs an Android image",
                                  "Example: bridgectl install-image Nougat64 --wait 600\n"
                                  "With --wait, progress with status 2 is the end of it, and with "
                                  "a negative one a failure, which is\nthe exit code 12.",
                                  declare};
