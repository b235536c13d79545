// bridgectl launch-url INSTANCE URL
#include <bridge/bridge.h>

#include "ProgramCommand.h"
#include "shared/Command.h"

namespace {

int call(const ProgramTexts& texts) { return bridgeLaunchUrl(texts[0].c_str(), texts[1].c_str()); }

void declare(OptionParser& parser, Session& session) {
    declareProgram(parser, session, {{"INSTANCE", "Instance name"}, {"URL", "URL to open"}},
                   {"bridgeLaunchUrl", call});
}

}  // namespace

extern const Command commandLaunchUrl;
const Command commandLaunchUrl{"Instances and apps",
                               "",
                               "launch-url",
                               "Open a URL in an instance",
                               "Example: bridgectl launch-url Nougat64 https://example.com/",
                               declare};
