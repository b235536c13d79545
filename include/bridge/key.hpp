/**
 * @file key.hpp
 * @brief The types of configuration keys and their properties. keys.hpp lists all keys.
 */
#ifndef BRIDGE_KEY_HPP
#define BRIDGE_KEY_HPP

#include <string>
#include <string_view>
#include <utility>

namespace bridge {

/** The type of a property's value. */
enum class KeyType { Bool, I32, I64, String, MultiString };

/** The name of a type, such as "multi-string". */
constexpr std::string_view nameOf(KeyType type) noexcept {
    switch (type) {
        case KeyType::Bool:
            return "bool";
        case KeyType::I32:
            return "i32";
        case KeyType::I64:
            return "i64";
        case KeyType::String:
            return "string";
        case KeyType::MultiString:
            return "multi-string";
    }
    return "";
}

/** A property: the last part of a key. All strings are literals. */
struct Property {
    /** The name, such as "dpi" or "status.adb_port". */
    std::string_view name;
    /** The type of its value. */
    KeyType type;
    /** The default in the form of the file; empty when there is none. */
    std::string_view defaultValue;
    /** The unit of a number; empty when it is unknown or the value is not a number. */
    std::string_view unit;
    /** The allowed elements, separated by ","; empty when all are allowed. */
    std::string_view allowed;
};

/** A global key and the C++ type of its value. */
template <typename Value>
class GlobalKey {
 public:
    constexpr explicit GlobalKey(const Property& property) noexcept : property_(&property) {}

    /** The full key, such as "vtr.enable_adb_access". */
    std::string text() const { return std::string("vtr.").append(property_->name); }
    constexpr const Property& property() const noexcept { return *property_; }

 private:
    const Property* property_;
};

/** A key of one instance and the C++ type of its value. */
template <typename Value>
class InstanceKey {
 public:
    InstanceKey(std::string instance, const Property& property)
        : instance_(std::move(instance)), property_(&property) {}

    /** The full key, such as "vtr.instance.Nougat64.dpi". */
    std::string text() const {
        return std::string("vtr.instance.").append(instance_).append(".").append(property_->name);
    }
    const std::string& instance() const noexcept { return instance_; }
    const Property& property() const noexcept { return *property_; }

 private:
    std::string instance_;
    const Property* property_;
};

}  // namespace bridge

#endif
