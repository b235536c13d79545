#ifndef BRIDGECTL_KEYVALUE_H
#define BRIDGECTL_KEYVALUE_H

#include <string>

#include "Configuration.h"
#include "Session.h"
#include "shared/JsonValue.h"

// Configuration keys in the form that the program prints.

// Reads a key from the library, in the form that people read. Only for KeyState::Value.
std::string readValue(Session& session, const KeyInfo& key);

// The same for every state: "unset" or `invalid: "text"` if there is no value.
std::string shownValue(Session& session, const KeyInfo& key);

// The value alone. Null if there is none.
JsonValue valueJson(Session& session, const KeyInfo& key);

// An object with "key", "type", "value", and "invalid" with a stored text that does not fit the
// type.
JsonObject keyJson(Session& session, const KeyInfo& key);

#endif
