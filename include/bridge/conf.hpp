/**
 * @file conf.hpp
 * @brief Typed access to the configuration. A wrong key throws an exception, whereas bridge.h ends
 * the process.
 */
#ifndef BRIDGE_CONF_HPP
#define BRIDGE_CONF_HPP

#include <bridge/bridge.h>

#include <bridge/conf_check.hpp>
#include <bridge/configuration_file.hpp>
#include <bridge/key.hpp>
#include <bridge/keys.hpp>
#include <bridge/result.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace bridge {

/**
 * Set functions stage a change. Reads see it immediately. The file gets it with the next commit.
 *
 * A function that takes a key throws KeyError when the key or its instance does not exist, when the
 * key has another type, or when its value cannot be parsed. The library is not called then.
 *
 * Reads and writes access the disk only for an unknown instance, to search the file for it. A
 * commit waits for the disk and for other programs; std::async can run it on another thread.
 */
namespace conf {

inline bool getBool(const std::string& key) {
    detail::checkRead(key, KeyType::Bool);
    return bridgeConfGetBool(key.c_str()) != 0;
}
inline std::int32_t getI32(const std::string& key) {
    detail::checkRead(key, KeyType::I32);
    return bridgeConfGetI32(key.c_str());
}
/** Always throws, because the catalogue has no such key. */
inline std::int64_t getI64(const std::string& key) {
    detail::checkRead(key, KeyType::I64);
    return bridgeConfGetI64(key.c_str());
}
inline TextResult getString(const std::string& key) {
    detail::checkRead(key, KeyType::String);
    return TextResult(bridgeConfGetString(key.c_str()), "bridgeConfGetString");
}
/** The elements, separated by ",". */
inline TextResult getMultiString(const std::string& key) {
    detail::checkRead(key, KeyType::MultiString);
    return TextResult(bridgeConfGetMultiString(key.c_str()), "bridgeConfGetMultiString");
}

inline Status setBool(const std::string& key, bool value) {
    detail::checkKey(key, KeyType::Bool);
    const bridge_i32 code = bridgeConfSetBool(key.c_str(), value ? 1 : 0);
    detail::configuration().wasSet(key);
    return Status(code, "bridgeConfSetBool");
}
inline Status setI32(const std::string& key, std::int32_t value) {
    detail::checkKey(key, KeyType::I32);
    const bridge_i32 code = bridgeConfSetI32(key.c_str(), value);
    detail::configuration().wasSet(key);
    return Status(code, "bridgeConfSetI32");
}
/** Always throws, because the catalogue has no such key. */
inline Status setI64(const std::string& key, std::int64_t value) {
    detail::checkKey(key, KeyType::I64);
    return Status(bridgeConfSetI64(key.c_str(), value), "bridgeConfSetI64");
}
inline Status setString(const std::string& key, const std::string& value) {
    detail::checkKey(key, KeyType::String);
    return Status(bridgeConfSetString(key.c_str(), value.c_str()), "bridgeConfSetString");
}
/** The elements, separated by ",". */
inline Status setMultiString(const std::string& key, const std::string& value) {
    detail::checkKey(key, KeyType::MultiString);
    return Status(bridgeConfSetMultiString(key.c_str(), value.c_str()), "bridgeConfSetMultiString");
}

}  // namespace conf

/** Internal; not for hosts. */
namespace detail {

inline std::vector<std::string> elementsOf(std::string_view joined) {
    std::vector<std::string> elements;
    while (!joined.empty()) {
        const std::size_t comma = joined.find(',');
        elements.emplace_back(joined.substr(0, comma));
        if (comma == std::string_view::npos) return elements;
        joined.remove_prefix(comma + 1);
        if (joined.empty()) elements.emplace_back();
    }
    return elements;
}

inline std::string joined(const std::vector<std::string>& elements) {
    std::string text;
    for (const std::string& one : elements) {
        if (&one != &elements.front()) text += ',';
        text += one;
    }
    return text;
}

template <typename Value>
Value get(const std::string& key) {
    if constexpr (std::is_same_v<Value, bool>) {
        return conf::getBool(key);
    } else if constexpr (std::is_same_v<Value, std::int32_t>) {
        return conf::getI32(key);
    } else if constexpr (std::is_same_v<Value, std::string>) {
        return conf::getString(key).value();
    } else {
        return elementsOf(conf::getMultiString(key).value());
    }
}

inline Status set(const std::string& key, bool value) { return conf::setBool(key, value); }
inline Status set(const std::string& key, std::int32_t value) { return conf::setI32(key, value); }
inline Status set(const std::string& key, const std::string& value) {
    return conf::setString(key, value);
}
inline Status set(const std::string& key, const std::vector<std::string>& value) {
    return conf::setMultiString(key, joined(value));
}

/** Whether a key of type Value accepts a Given. Strings convert. Other types must match, so that a
 * number does not become a bool. */
template <typename Value, typename Given>
inline constexpr bool takes =
    std::is_same_v<Value, std::string> ? std::is_convertible_v<Given, std::string>
                                       : std::is_same_v<Value, std::decay_t<Given>>;

}  // namespace detail

namespace conf {

/** The value of a key, with the key's type: get(keys::instance("Nougat64").dpi). Throws Error when
 * the library cannot return a string. */
template <typename Value>
Value get(const GlobalKey<Value>& key) {
    return detail::get<Value>(key.text());
}
template <typename Value>
Value get(const InstanceKey<Value>& key) {
    return detail::get<Value>(key.text());
}

/** Stages a value of the key's type. A value of another type does not compile. */
template <typename Value, typename Given, typename = std::enable_if_t<detail::takes<Value, Given>>>
Status set(const GlobalKey<Value>& key, const Given& value) {
    return detail::set(key.text(), Value(value));
}
template <typename Value, typename Given, typename = std::enable_if_t<detail::takes<Value, Given>>>
Status set(const InstanceKey<Value>& key, const Given& value) {
    return detail::set(key.text(), Value(value));
}

/** Overload for a braced list. */
inline Status set(const GlobalKey<std::vector<std::string>>& key,
                  const std::vector<std::string>& value) {
    return detail::set(key.text(), value);
}
inline Status set(const InstanceKey<std::vector<std::string>>& key,
                  const std::vector<std::string>& value) {
    return detail::set(key.text(), value);
}

/**
 * Allows keys of a new instance to be set. Throws KeyError for an invalid name and for a name that
 * does not begin with the name of an image.
 */
inline void addInstance(const std::string& name) {
    detail::checkNewInstance(name);
    detail::configuration().addInstance(name);
}

/** bridgeConfCommit() */
inline Status commit() {
    detail::configuration().load();
    const bridge_i32 code = bridgeConfCommit();
    if (code != BRIDGE_FAILURE) detail::configuration().committed();
    return Status(code, "bridgeConfCommit", detail::configuration().path());
}

/** bridgeConfCommitToFile(). Afterwards no change is staged for commit(). */
inline Status commitToFile(const std::string& path) {
    detail::configuration().load();
    const bridge_i32 code = bridgeConfCommitToFile(path.c_str());
    if (code != BRIDGE_FAILURE) detail::configuration().committed();
    return Status(code, "bridgeConfCommitToFile", path);
}

}  // namespace conf

}  // namespace bridge

#endif
