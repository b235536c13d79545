#ifndef BRIDGECTL_KEYVALUE_H
#define BRIDGECTL_KEYVALUE_H

#include <string>

#include "Configuration.h"
#include "Session.h"
#include "shared/JsonValue.h"

// Keys of the configuration as the program shows them.

// Reads a key through the library, in the form that people see. Only for KeyState::Value.
std::string readValue(Session& session, const KeyInfo& key);

// The same for every state: "unset", and `invalid: "text"`.
std::string shownValue(Session& session, const KeyInfo& key);

// The value alone: null when there is none.
JsonValue valueJson(Session& session, const KeyInfo& key);

// An object with "key", "type", "value", and "invalid" with a stored text that is no value.
JsonObject keyJson(Session& session, const KeyInfo& key);

#endif
