#ifndef BRIDGE_BRIDGEINSTANCES_H
#define BRIDGE_BRIDGEINSTANCES_H

#include <string>

#include "conf/Conf.h"

// The instances of a store as an indented JSON array, in order of their names.
std::string bridgeInstancesJson(ConfStore& store);

#endif
