/**
 * @file conf_check.hpp
 * @brief The checks of keys and instances before conf.hpp calls the library.
 */
#ifndef BRIDGE_CONF_CHECK_HPP
#define BRIDGE_CONF_CHECK_HPP

#include <bridge/bridge.h>

#include <algorithm>
#include <bridge/configuration_file.hpp>
#include <bridge/key.hpp>
#include <bridge/keys.hpp>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace bridge {

/** A key, an instance or a stored value that is fatal in the library. */
class KeyError : public std::invalid_argument {
 public:
    KeyError(const std::string& message, std::string key, std::string suggestion = {})
        : std::invalid_argument(message),
          key_(std::move(key)),
          suggestion_(std::move(suggestion)) {}

    /** The wrong key or instance name. */
    const std::string& key() const noexcept { return key_; }
    /** The most similar valid name; empty when none is similar. */
    const std::string& suggestion() const noexcept { return suggestion_; }

 private:
    std::string key_;
    std::string suggestion_;
};

namespace detail {

inline std::string inQuotes(std::string_view text) {
    return std::string("\"").append(text).append("\"");
}

/** The Levenshtein distance. */
inline std::size_t editDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = i;
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row[to.size()];
}

/** Finds the candidate with the smallest edit distance. The first of several wins. */
class Nearest {
 public:
    /** A long name may have a greater distance than a short one. */
    Nearest(std::string_view wanted, std::size_t nameLength)
        : wanted_(wanted), best_(nameLength >= 8 ? 4 : 3) {}

    void look(const std::string& candidate) {
        const std::size_t distance = editDistance(wanted_, candidate);
        if (distance >= best_) return;
        best_ = distance;
        found_ = candidate;
    }

    const std::string& found() const noexcept { return found_; }

    /** The end of an error message. */
    std::string question() const {
        return found_.empty() ? std::string() : "; did you mean " + inQuotes(found_) + "?";
    }

 private:
    std::string_view wanted_;
    std::size_t best_;
    std::string found_;
};

[[noreturn]] inline void throwNoKey(const std::string& key) {
    const std::optional<KeyParts> parts = partsOf(key);
    const std::string prefix =
        parts && parts->ofInstance
            ? std::string("vtr.instance.").append(parts->instance).append(".")
            : std::string("vtr.");
    Nearest nearest(key, parts ? parts->property.size() : key.size());
    if (parts && parts->ofInstance) {
        for (const Property& one : kInstanceProperties)
            nearest.look(prefix + std::string(one.name));
    } else {
        for (const Property& one : kGlobalProperties) nearest.look(prefix + std::string(one.name));
    }
    throw KeyError("there is no key " + inQuotes(key) + nearest.question(), key, nearest.found());
}

/** "an i32", "a bool" */
inline std::string withArticle(KeyType type) {
    const std::string_view name = nameOf(type);
    return std::string(name.front() == 'i' ? "an " : "a ").append(name);
}

/** An existing key of the expected type. */
struct CheckedKey {
    KeyParts parts;
    const Property* property;
};

inline void checkInstance(std::string_view instance) {
    if (configuration().knowsInstance(instance)) return;
    Nearest nearest(instance, instance.size());
    for (const std::string& one : configuration().knownInstances()) nearest.look(one);
    throw KeyError("there is no instance " + inQuotes(instance) + nearest.question(),
                   std::string(instance), nearest.found());
}

/** Checks that the key exists, has the type, and belongs to a known instance. */
inline CheckedKey checkKey(const std::string& key, KeyType type) {
    const std::optional<KeyParts> parts = partsOf(key);
    const Property* const property = parts ? findProperty(*parts) : nullptr;
    if (property == nullptr) throwNoKey(key);
    if (property->type != type) {
        throw KeyError(
            inQuotes(key) + " is " + withArticle(property->type) + ", not " + withArticle(type),
            key);
    }
    if (parts->ofInstance) checkInstance(parts->instance);
    return {*parts, property};
}

/** Follows the library's parser: leading white space, an optional sign, digits. It ignores the
 * rest. */
inline bool isReadableI32(std::string_view text) {
    const std::size_t start = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
    std::string_view digits = text.substr(start);
    const bool plus = !digits.empty() && digits.front() == '+';
    if (plus) digits.remove_prefix(1);
    if (plus && !digits.empty() && digits.front() == '-') return false;
    std::int32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (error == std::errc::result_out_of_range || number != 0) return true;
    return error == std::errc::invalid_argument ? text.empty() : stop == end;
}

inline bool isReadable(KeyType type, std::string_view value) {
    if (type == KeyType::Bool) return value == "0" || value == "1";
    return type != KeyType::I32 || isReadableI32(value);
}

/** Whether a number of an instance is not 0. Does not read a stored number that is fatal. */
inline bool hasNumber(const std::string& instance, const char* property) {
    const std::string key = "vtr.instance." + instance + "." + property;
    const std::optional<std::string> stored = configuration().loadedValue(key);
    if (stored && !configuration().isSet(key) && !isReadableI32(*stored)) return false;
    return bridgeConfGetI32(key.c_str()) != 0;
}

/** Whether the library has loaded the instance. Otherwise all its strings are empty and its numbers
 * are 0. */
inline bool isLoaded(const std::string& instance) {
    const std::string key = "vtr.instance." + instance + ".display_name";
    char* const name = bridgeConfGetString(key.c_str());
    const bool isNamed = name != nullptr && *name != '\0';
    bridgeFreeMemory(name);
    if (isNamed) return true;
    for (const char* property : {"dpi", "max_fps", "eco_mode_max_fps", "gl_win_height"}) {
        if (hasNumber(instance, property)) return true;
    }
    return false;
}

inline void checkLoaded(std::string_view instance) {
    if (configuration().isReady(instance)) return;
    const std::string name(instance);
    if (!isLoaded(name)) {
        throw KeyError("instance " + inQuotes(name) +
                           " is not loaded yet: commit, or wait for instanceListUpdated",
                       name);
    }
    configuration().isReadyNow(name);
}

inline void checkValue(const std::string& key, const Property& property) {
    if (configuration().isSet(key)) return;
    const std::optional<std::string> stored = configuration().loadedValue(key);
    const std::string_view value = stored ? std::string_view(*stored) : property.defaultValue;
    if (isReadable(property.type, value)) return;
    if (value.empty() && property.defaultValue.empty()) {
        throw KeyError(inQuotes(key) + " has no value and no default", key);
    }
    throw KeyError(inQuotes(key) + " has a value that cannot be read: " + inQuotes(value), key);
}

/** Checks that reading the key is not fatal. */
inline void checkRead(const std::string& key, KeyType type) {
    const CheckedKey checked = checkKey(key, type);
    if (checked.parts.ofInstance) checkLoaded(checked.parts.instance);
    checkValue(key, *checked.property);
}

/** Checks the image. An instance's name begins with the name of its image. */
inline void checkImage(const std::string& instance) {
    const std::string image = instance.substr(0, instance.find('_'));
    std::string all;
    for (const std::string_view one : kImages) {
        if (one == image) return;
        all.append(all.empty() ? "" : ", ").append(one);
    }
    throw KeyError(inQuotes(image) + " is not an image; there are " + all, instance);
}

inline void checkNewInstance(const std::string& name) {
    constexpr std::string_view kEndsAKey(".=\n\0", 4);
    if (name.empty() || name.find_first_of(kEndsAKey) != std::string::npos) {
        throw KeyError(inQuotes(name) + " cannot be the name of an instance", name);
    }
    checkImage(name);
}

/** Checks that a listing is not fatal: every instance has an image and numbers that can be
 * parsed. */
inline void checkListing() {
    for (const std::string& one : configuration().loadedInstances()) {
        checkImage(one);
        for (const char* property : {"ram", "cpus"}) {
            const std::string key = "vtr.instance." + one + "." + property;
            checkValue(key, *checkKey(key, KeyType::I32).property);
        }
    }
}

}  // namespace detail

}  // namespace bridge

#endif
