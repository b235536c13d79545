// bridgectl uninstall INSTANCE PACKAGE
#include <bridge/bridge.h>

#include "ProgramCommand.h"
#include "shared/Command.h"

namespace {

int call(const ProgramTexts& texts) {
    return bridgeUninstallApp(texts[0].c_str(), texts[1].c_str());
}

void declare(OptionParser& parser, Session& session) {
    declareProgram(parser, session,
                   {{"INSTANCE", "Instance name"}, {"PACKAGE", "Android package name"}},
                   {"bridgeUninstallApp", call, uninstallOutcome});
}

}  // namespace

extern const Command commandUninstall;
const Command commandUninstall{"Instances and apps",
                               "",
                               "uninstall",
                               "Uninstall an app from an instance",
                               "Example: bridgectl uninstall Nougat64 com.example.app --wait 60\n"
                               "With --wait, the command ends when the app is uninstalled.",
                               declare};
