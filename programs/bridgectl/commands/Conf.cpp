// bridgectl conf ...
#include "shared/Command.h"

extern const Command commandConf;
const Command commandConf{"Configuration",
                          "",
                          "conf",
                          "Read and change the configuration",
                          "Example: bridgectl conf get vtr.locale",
                          nullptr};
