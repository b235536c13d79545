#ifndef BRIDGECTL_KEYCHANGE_H
#define BRIDGECTL_KEYCHANGE_H

#include <string>

#include "Configuration.h"
#include "Session.h"

// Sets a key of an instance that exists, or a global one, to `change.text`, in its stored form,
// commits that and prints the key with the value before and after. `file` takes the configuration
// in the product's place unless it is empty.
void commitChange(Session& session, const KeyInfo& change, const std::string& file);

#endif
