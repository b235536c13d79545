#include "KeyValue.h"

#include <bridge/bridge.h>

#include <stdexcept>

#include "Configuration.h"
#include "LibraryText.h"
#include "conf/ConfCatalogue.h"
#include "shared/JsonValue.h"

namespace {

std::string taken(char* text) {
    const LibraryText owned(text);
    if (owned == nullptr) throw std::runtime_error("the library gave no text; see the log");
    return owned.get();
}

}  // namespace

std::string readValue(Session& session, const KeyInfo& key) {
    const auto read = [&session, &key](const char* function, auto get) {
        return session.timed(function, [&] { return get(key.key.c_str()); });
    };
    switch (key.type) {
        case ConfType::Bool:
            return read("bridgeConfGetBool", bridgeConfGetBool) != 0 ? "true" : "false";
        case ConfType::I32:
            return std::to_string(read("bridgeConfGetI32", bridgeConfGetI32));
        case ConfType::I64:
            return std::to_string(read("bridgeConfGetI64", bridgeConfGetI64));
        case ConfType::MultiString:
            return taken(read("bridgeConfGetMultiString", bridgeConfGetMultiString));
        case ConfType::String:
            return taken(read("bridgeConfGetString", bridgeConfGetString));
        case ConfType::None:
            break;
    }
    return {};
}

std::string shownValue(Session& session, const KeyInfo& key) {
    switch (key.state) {
        case KeyState::Unset:
            return "unset";
        case KeyState::Invalid:
            return "invalid: \"" + key.text + "\"";
        case KeyState::Value:
            break;
    }
    return readValue(session, key);
}

JsonValue valueJson(Session& session, const KeyInfo& key) {
    if (key.state != KeyState::Value) return nullptr;
    const std::string value = readValue(session, key);
    switch (key.type) {
        case ConfType::Bool:
            return value == "true";
        case ConfType::I32:
        case ConfType::I64:
            return std::stoll(value);
        default:
            return value;
    }
}

JsonObject keyJson(Session& session, const KeyInfo& key) {
    JsonObject object{
        {"key", key.key}, {"type", typeName(key.type)}, {"value", valueJson(session, key)}};
    if (key.state == KeyState::Invalid) object.push_back({"invalid", key.text});
    return object;
}
