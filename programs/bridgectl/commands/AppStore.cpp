// bridgectl app-store INSTANCE STORE PACKAGE
#include <bridge/bridge.h>

#include "ProgramCommand.h"
#include "shared/Command.h"

namespace {

int call(const ProgramTexts& texts) {
    return bridgeLaunchAppStore(texts[0].c_str(), texts[1].c_str(), texts[2].c_str());
}

void declare(OptionParser& parser, Session& session) {
    declareProgram(parser, session,
                   {{"INSTANCE", "Instance name"},
                    {"STORE", "Name of the store"},
                    {"PACKAGE", "Android package name"}},
                   {"bridgeLaunchAppStore", call});
}

}  // namespace

extern const Command commandAppStore;
const Command commandAppStore{"Instances and apps",
                              "",
                              "app-store",
                              "Open the page of an app in an app store",
                              "Example: bridgectl app-store Nougat64 play com.example.app",
                              declare};
