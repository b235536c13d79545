#ifndef BRIDGECTL_KEYCHANGE_H
#define BRIDGECTL_KEYCHANGE_H

#include <string>

#include "Configuration.h"
#include "Session.h"

// Sets a global key or a key of an existing instance to `change.text`, which is in stored form,
// commits, and prints the key with its values before and after. Writes to `file` instead of the
// product's configuration unless `file` is empty.
void commitChange(Session& session, const KeyInfo& change, const std::string& file);

#endif
