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

// Keys and values as read from the file, without the library. The library ends the process for an
// unknown key, a wrong type or a value that cannot be read, so the program checks for these first.

enum class KeyState {
    Value,    // can be read
    Unset,    // nothing is stored, and the default is not a value of the type
    Invalid,  // the stored text does not fit the type
};

struct KeyInfo {
    std::string key;
    ConfType type;
    KeyState state;
    std::string text;  // the stored text, or the default
};

class Configuration {
 public:
    // `content` is the text of the configuration file, or empty. Reading stops where the library
    // stops.
    explicit Configuration(std::string_view content);

    // Empty if the key does not exist or names an instance that is not in the file.
    std::optional<KeyInfo> find(std::string_view key) const;

    // The type of a key. Its instance need not exist.
    std::optional<ConfType> typeOf(std::string_view key) const;

    // The default of a key, in its stored form. The key must have a type.
    const std::string& defaultOf(std::string_view key) const;

    // All keys that the library can read, in byte order.
    std::vector<KeyInfo> list() const;

    const std::set<std::string>& instances() const { return instances_; }

 private:
    const ConfProperty* propertyOf(std::string_view key) const;
    KeyInfo describe(const std::string& key, const ConfProperty& property) const;

    ConfCatalogue catalogue_ = confProductCatalogue();
    std::map<std::string, std::string, std::less<>> stored_;
    std::set<std::string> instances_;
};

// The name of a type in messages: "bool", "i32", "string", "multi-string".
const char* typeName(ConfType type);

// The stored form of a value from the command line: "1" for "true". Empty if it does not fit the
// type.
std::optional<std::string> storedForm(ConfType type, std::string_view value);

#endif
