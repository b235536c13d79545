// bridgectl launch INSTANCE PACKAGE
#include <bridge/bridge.h>

#include "ProgramCommand.h"
#include "shared/Command.h"

namespace {

int call(const ProgramTexts& texts) { return bridgeLaunchApp(texts[0].c_str(), texts[1].c_str()); }

void declare(OptionParser& parser, Session& session) {
    declareProgram(parser, session,
                   {{"INSTANCE", "Instance name"}, {"PACKAGE", "Android package name"}},
                   {"bridgeLaunchApp", call, launchOutcome});
}

}  // namespace

extern const Command commandLaunch;
const Command commandLaunch{"Instances and apps",
                            "",
                            "launch",
                            "Launch an app in an instance",
                            "Example: bridgectl launch Nougat64 com.example.app\n"
                            "Example: bridgectl launch Nougat64 com.example.app --wait 60\n"
                            "With --wait, the command ends when the app is displayed.",
                            declare};
