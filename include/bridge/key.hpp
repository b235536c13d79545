/**
 * @file key.hpp
 * @brief What a key of the configuration is: its text, its type, its default. keys.hpp has them
 * all.
 */
#ifndef BRIDGE_KEY_HPP
#define BRIDGE_KEY_HPP

#include <string>
#include <string_view>
#include <utility>

namespace bridge {

/** What a property holds. */
enum class KeyType { Bool, I32, I64, String, MultiString };

/** The name of a type, as the documents have it: "multi-string". */
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

/** A property: a key without the part that says whose it is. All texts live for ever. */
struct Property {
    /** "dpi", "status.adb_port" */
    std::string_view name;
    /** What it holds. */
    KeyType type;
    /** As the file has it; empty: none. */
    std::string_view defaultValue;
    /** What a number counts; empty: not known, or not a number. */
    std::string_view unit;
    /** The values that an element can have, joined by ","; empty: any. */
    std::string_view allowed;
};

/** A key of the whole product, whose values are of this C++ type. */
template <typename Value>
class GlobalKey {
 public:
    constexpr explicit GlobalKey(const Property& property) noexcept : property_(&property) {}

    /** The full key: "vtr.enable_adb_access". */
    std::string text() const { return std::string("vtr.").append(property_->name); }
    constexpr const Property& property() const noexcept { return *property_; }

 private:
    const Property* property_;
};

/** A key of one instance, whose values are of this C++ type. */
template <typename Value>
class InstanceKey {
 public:
    InstanceKey(std::string instance, const Property& property)
        : instance_(std::move(instance)), property_(&property) {}

    /** The full key: "vtr.instance.Nougat64.dpi". */
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
