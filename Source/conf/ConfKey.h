#ifndef CONF_CONFKEY_H
#define CONF_CONFKEY_H

#include <cstddef>
#include <string>
#include <string_view>

#include "xpl/Xbytes.h"

// The grammar of keys: "vtr.<property>" and "vtr.instance.<instance>.<property>".

constexpr std::string_view CONF_PREFIX = "vtr.";
constexpr std::string_view CONF_INSTANCE_PREFIX = "vtr.instance.";

enum class ConfScope { Global, Instance, None };

struct ConfKey {
    ConfScope scope = ConfScope::None;
    std::string_view instance;  // up to the next "."; for ConfScope::Instance only
    std::string_view property;  // the whole key where an instance key has no second "."
};

inline ConfKey confSplitKey(std::string_view key) {
    if (xbytesStartsWith(key, CONF_INSTANCE_PREFIX)) {
        const std::size_t dot = xbytesFind<'.'>(key, CONF_INSTANCE_PREFIX.size());
        const std::string_view instance =
            key.substr(CONF_INSTANCE_PREFIX.size(), dot - CONF_INSTANCE_PREFIX.size());
        const std::string_view property = dot == std::string_view::npos ? key : key.substr(dot + 1);
        return {ConfScope::Instance, instance, property};
    }
    if (xbytesStartsWith(key, CONF_PREFIX)) {
        return {ConfScope::Global, {}, key.substr(CONF_PREFIX.size())};
    }
    return {};
}

inline std::string confGlobalKey(std::string_view property) {
    return std::string(CONF_PREFIX).append(property);
}

// "vtr.instance.<instance>.", which the keys of an instance begin with.
inline std::string confInstancePrefix(std::string_view instance) {
    return std::string(CONF_INSTANCE_PREFIX).append(instance).append(".");
}

#endif
