#ifndef BRIDGE_BRIDGECOMMIT_H
#define BRIDGE_BRIDGECOMMIT_H

#include <string>

#include "conf/Conf.h"
#include "xpl/Xerr.h"

// What the export of the same name does.
namespace bridge {

// confCommitToFile, whose path is logged first.
[[nodiscard]] XErr bridgeConfCommitToFile(ConfStore& store, const std::string& path);

}  // namespace bridge

#endif
