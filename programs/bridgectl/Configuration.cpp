#include "Configuration.h"

#include <cstdint>
#include <stdexcept>

#include "conf/ConfKey.h"
#include "conf/ConfNumber.h"
#include "conf/ConfText.h"

namespace {

// The entries before the first line at which the library stops reading.
template <typename Visit>
void forEachEntry(std::string_view content, Visit visit) {
    ConfTextReader reader(content);
    ConfEntry entry;
    try {
        while (reader.next(entry) == ConfRead::Entry && visit(entry)) {
        }
    } catch (const std::out_of_range&) {
        // The library also stops at a line that ends with "=".
    }
}

KeyState stateOf(ConfType type, const std::string& text) {
    std::int32_t number = 0;
    std::int64_t longNumber = 0;
    switch (type) {
        case ConfType::Bool:
            if (text.empty()) return KeyState::Unset;
            return text == "0" || text == "1" ? KeyState::Value : KeyState::Invalid;
        case ConfType::I32:
            return confParseI32(text, number) ? KeyState::Value : KeyState::Invalid;
        case ConfType::I64:
            return confParseI64(text, longNumber) ? KeyState::Value : KeyState::Invalid;
        default:
            return KeyState::Value;
    }
}

std::optional<std::string> storedBool(std::string_view value) {
    if (value == "true" || value == "1") return "1";
    if (value == "false" || value == "0") return "0";
    return std::nullopt;
}

// Stricter than the library: the whole text must be a number.
template <typename Number>
std::optional<std::string> storedNumber(std::string_view value,
                                        bool (*parse)(std::string_view, Number&)) {
    Number number = 0;
    if (!parse(value, number) || std::to_string(number) != value) return std::nullopt;
    return std::string(value);
}

}  // namespace

Configuration::Configuration(std::string_view content) {
    forEachEntry(content, [this](const ConfEntry& entry) {
        if (propertyOf(entry.key) == nullptr) return false;
        const ConfKey key = confSplitKey(entry.key);
        if (key.scope == ConfScope::Instance) instances_.emplace(key.instance);
        stored_[std::string(entry.key)] = entry.value;
        return true;
    });
}

const ConfProperty* Configuration::propertyOf(std::string_view key) const {
    const ConfKey parts = confSplitKey(key);
    if (parts.scope == ConfScope::Instance) return catalogue_.findInstance(parts.property);
    return parts.scope == ConfScope::Global ? catalogue_.findGlobal(parts.property) : nullptr;
}

KeyInfo Configuration::describe(const std::string& key, const ConfProperty& property) const {
    const auto stored = stored_.find(key);
    const std::string& text = stored == stored_.end() ? property.defaultValue : stored->second;
    return {key, property.type, stateOf(property.type, text), text};
}

std::optional<KeyInfo> Configuration::find(std::string_view key) const {
    const ConfProperty* property = propertyOf(key);
    if (property == nullptr) return std::nullopt;
    const ConfKey parts = confSplitKey(key);
    if (parts.scope == ConfScope::Instance && instances_.count(std::string(parts.instance)) == 0) {
        return std::nullopt;
    }
    return describe(std::string(key), *property);
}

std::optional<ConfType> Configuration::typeOf(std::string_view key) const {
    const ConfProperty* property = propertyOf(key);
    return property == nullptr ? std::nullopt : std::optional(property->type);
}

const std::string& Configuration::defaultOf(std::string_view key) const {
    return propertyOf(key)->defaultValue;
}

std::vector<KeyInfo> Configuration::list() const {
    std::map<std::string, const ConfProperty*> keys;
    for (const auto& [name, property] : catalogue_.globals()) {
        keys[confGlobalKey(name)] = &property;
    }
    for (const std::string& instance : instances_) {
        // The library takes keys as C strings, and a key that is cut at a NUL would be fatal.
        if (instance.find('\0') != std::string::npos) continue;
        for (const auto& [name, property] : catalogue_.instances()) {
            keys[confInstancePrefix(instance) + name] = &property;
        }
    }
    std::vector<KeyInfo> all;
    for (const auto& [key, property] : keys) all.push_back(describe(key, *property));
    return all;
}

const char* typeName(ConfType type) {
    switch (type) {
        case ConfType::I32:
            return "i32";
        case ConfType::I64:
            return "i64";
        case ConfType::MultiString:
            return "multi-string";
        case ConfType::Bool:
            return "bool";
        case ConfType::String:
            return "string";
        case ConfType::None:
            break;
    }
    return "none";
}

std::optional<std::string> storedForm(ConfType type, std::string_view value) {
    switch (type) {
        case ConfType::Bool:
            return storedBool(value);
        case ConfType::I32:
            return storedNumber(value, confParseI32);
        case ConfType::I64:
            return storedNumber(value, confParseI64);
        default:
            return std::string(value);
    }
}
