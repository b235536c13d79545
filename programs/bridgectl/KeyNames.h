#ifndef BRIDGECTL_KEYNAMES_H
#define BRIDGECTL_KEYNAMES_H

#include <string>

#include "Configuration.h"

// A hint for a key that does not exist: "did you mean vtr.locale?". Empty if no key is similar.
std::string keyHint(const Configuration& configuration, const std::string& key);

#endif
