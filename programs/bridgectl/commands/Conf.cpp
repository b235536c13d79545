// bridgectl conf ...
#include "shared/Command.h"

extern const Command commandConf;
const Command commandConf{"", "conf", "Commands on the configuration",
                          "Example: bridgectl conf get vtr.locale", nullptr};
