#ifndef BRIDGECTL_CONFIGURATION_H
#define BRIDGECTL_CONFIGURATION_H

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "conf/ConfCatalogue.h"

// What the program knows about keys and values before it asks the library, where a key that does
// not exist, another type and a value that cannot be read end the process.

enum class KeyState {
    Value,    // can be read
    Unset,    // nothing is stored, and the default is no value of the type
    Invalid,  // what is stored is no value of the type
};

struct KeyInfo {
    std::string key;
    ConfType type;
    KeyState state;
    std::string text;  // the stored text, or the default
};

class Configuration {
 public:
    // The text of the configuration file; empty without one. Reading stops where the library's
    // does.
    explicit Configuration(std::string_view content);

    // Nothing when the key does not exist, or names an instance that is not in the file.
    std::optional<KeyInfo> find(std::string_view key) const;

    // Type of a key by its name alone: any instance will do.
    std::optional<ConfType> typeOf(std::string_view key) const;

    // The stored form that a key has by itself: its default. The key must have a type.
    const std::string& defaultOf(std::string_view key) const;

    // Every key, in byte order.
    std::vector<KeyInfo> list() const;

    const std::set<std::string>& instances() const { return instances_; }

 private:
    const ConfProperty* propertyOf(std::string_view key) const;
    KeyInfo describe(const std::string& key, const ConfProperty& property) const;

    ConfCatalogue catalogue_ = confProductCatalogue();
    std::map<std::string, std::string, std::less<>> stored_;
    std::set<std::string> instances_;
};

// Name of a type for people: "bool", "i32", "string", "multi-string".
const char* typeName(ConfType type);

// The stored form of a value that was typed in: "1" for "true". Nothing when it does not fit the
// type.
std::optional<std::string> storedForm(ConfType type, std::string_view value);

#endif
