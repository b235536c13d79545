#ifndef CONF_CONFKEY_H
#define CONF_CONFKEY_H

#include <cstddef>
#include <string>
#include <string_view>

#include "conf/ConfCatalogue.h"
#include "xpl/Xbytes.h"

// Keys: "vtr.<property>" and "vtr.instance.<instance>.<property>". A key is split once, on entry to
// the store, and passed on as a ConfKey.

constexpr std::string_view CONF_PREFIX = "vtr.";
constexpr std::string_view CONF_INSTANCE_PREFIX = "vtr.instance.";

enum class ConfScope { Global, Instance, None };

// A key, split into its parts. The views point into the original text.
struct ConfKey {
    std::string_view text;  // all of it
    ConfScope scope = ConfScope::None;
    std::string_view instance;  // up to the next "."; for ConfScope::Instance only
    std::string_view property;  // the whole key where an instance key has no second "."

    // Set by confFindKey; null where the catalogue has no such property.
    const ConfProperty* declared = nullptr;
    std::size_t index = 0;  // of the property in its schema
};

inline ConfKey confSplitKey(std::string_view text) {
    if (text.substr(0, CONF_INSTANCE_PREFIX.size()) == CONF_INSTANCE_PREFIX) {
        const std::size_t start = CONF_INSTANCE_PREFIX.size();
        const std::size_t dot = text.find('.', start);
        const std::string_view property =
            dot == std::string_view::npos ? text : text.substr(dot + 1);
        return {text, ConfScope::Instance, text.substr(start, dot - start), property};
    }
    if (text.substr(0, CONF_PREFIX.size()) == CONF_PREFIX) {
        return {text, ConfScope::Global, {}, text.substr(CONF_PREFIX.size())};
    }
    return {text, ConfScope::None, {}, {}};
}

// Splits a key and finds its declaration. `hint` as in ConfSchema::find.
inline ConfKey confFindKey(const ConfCatalogue& catalogue, std::string_view text,
                           std::size_t hint = 0) {
    ConfKey key = confSplitKey(text);
    if (key.scope == ConfScope::None) return key;
    const ConfSchema& schema =
        key.scope == ConfScope::Instance ? catalogue.instances() : catalogue.globals();
    const auto found = schema.find(key.property, hint);
    if (found == schema.end()) return key;
    key.declared = &found->second;
    key.index = static_cast<std::size_t>(found - schema.begin());
    return key;
}

// Whether key < prefix + name, in byte order.
inline bool confKeyIsBefore(std::string_view key, std::string_view prefix, std::string_view name) {
    const int order = key.compare(0, prefix.size(), prefix);
    return order != 0 ? order < 0 : key.substr(prefix.size()) < name;
}

inline std::string confGlobalKey(std::string_view property) {
    return std::string(CONF_PREFIX).append(property);
}

// "vtr.instance.<instance>."
inline std::string confInstancePrefix(std::string_view instance) {
    return std::string(CONF_INSTANCE_PREFIX).append(instance).append(".");
}

#endif
