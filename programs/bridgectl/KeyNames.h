#ifndef BRIDGECTL_KEYNAMES_H
#define BRIDGECTL_KEYNAMES_H

#include <string>

#include "Configuration.h"

// What was probably meant by a key that does not exist: "did you mean vtr.locale?". Empty when
// nothing is like it.
std::string keyHint(const Configuration& configuration, const std::string& key);

#endif
