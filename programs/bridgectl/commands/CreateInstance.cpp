// bridgectl create-instance IMAGE CPU RAM ENGINE RENDERER PROFILE
#include <bridge/bridge.h>

#include "ProgramCommand.h"
#include "shared/Command.h"

namespace {

int call(const ProgramTexts& texts) {
    return bridgeCreateFreshInstance(texts[0].c_str(), texts[1].c_str(), texts[2].c_str(),
                                     texts[3].c_str(), texts[4].c_str(), texts[5].c_str());
}

void declare(OptionParser& parser, Session& session) {
    declareProgram(parser, session,
                   {{"IMAGE", "Name of the image"},
                    {"CPU", "Number of processors"},
                    {"RAM", "Memory in MiB"},
                    {"ENGINE", "Graphics engine"},
                    {"RENDERER", "Graphics renderer"},
                    {"PROFILE", "Device profile code"}},
                   {"bridgeCreateFreshInstance", call, createInstanceOutcome});
}

}  // namespace

extern const Command commandCreateInstance;
const Command commandCreateInstance{
    "", "create-instance", "Creates a new instance",
    "Example: bridgectl create-instance Nougat64 4 4096 aga dx s21u --wait 600\n"
    "With --wait, it ends when the instance has been created; another status than 0 is a failure, "
    "which\nis the exit code 12."
    " A copy of an instance is made by bridgeadm copy-instance; bridgeadm remove-instance removes "
    "one.",
    declare};
