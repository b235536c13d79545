// bridgectl install-apk INSTANCE FILE
#include <bridge/bridge.h>

#include "ProgramCommand.h"
#include "shared/Command.h"

namespace {

int call(const ProgramTexts& texts) { return bridgeInstallApk(texts[0].c_str(), texts[1].c_str()); }

void declare(OptionParser& parser, Session& session) {
    declareProgram(parser, session, {{"INSTANCE", "Instance name"}, {"FILE", "APK file"}},
                   {"bridgeInstallApk", call, installApkOutcome});
}

}  // namespace

extern const Command commandInstallApk;
const Command commandInstallApk{
    "Instances and apps",
    "",
    "install-apk",
    "Install an APK file in an instance",
    "Example: bridgectl install-apk Nougat64 C:\\Downloads\\app.apk\n"
    "Example: bridgectl install-apk Nougat64 C:\\Downloads\\app.apk --wait 60\n"
    "With --wait, the command ends when the player reports the result. A status other than 0\n"
    "is a failure, with exit code 12.",
    declare};
