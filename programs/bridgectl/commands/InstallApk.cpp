// bridgectl install-apk INSTANCE FILE
#include <bridge/bridge.h>

#include "ProgramCommand.h"
#include "shared/Command.h"

namespace {

int call(const ProgramTexts& texts) { return bridgeInstallApk(texts[0].c_str(), texts[1].c_str()); }

void declare(OptionParser& parser, Session& session) {
    declareProgram(parser, session, {{"INSTANCE", "Instance name"}, {"FILE", "The APK file"}},
                   {"bridgeInstallApk", call, installApkOutcome});
}

}  // namespace

extern const Command commandInstallApk;
const Command commandInstallApk{
    "", "install-apk", "Installs an APK file into an instance",
    "Example: bridgectl install-apk Nougat64 C:\\Downloads\\app.apk --wait 60\n"
    "With --wait, it ends when the file has been dealt with; another status than 0 is a "
    "failure,\nwhich is the exit code 12.",
    declare};
