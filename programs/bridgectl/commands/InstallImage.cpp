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
const Command commandInstallImage{
    "Instances and apps",
    "",
    "install-image",
    "Install an Android image",
    "Example: bridgectl install-image Nougat64 --wait 600\n"
    "With --wait, the command ends when the manager reports the end of the installation. A\n"
    "negative status is a failure, with exit code 12.",
    declare};
