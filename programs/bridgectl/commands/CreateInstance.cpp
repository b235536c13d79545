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
    "Instances and apps",
    "",
    "create-instance",
    "Create an instance",
    "Example: bridgectl create-instance Nougat64 4 4096 aga dx s21u\n"
    "Example: bridgectl create-instance Nougat64 4 4096 aga dx s21u --wait 600\n"
    "With --wait, the command ends when the manager reports the result. A status other than 0\n"
    "is a failure, with exit code 12.\n"
    "\n"
    "To copy or remove an instance, use `bridgeadm copy-instance` and\n"
    "`bridgeadm remove-instance`.",
    declare};
