#include "shared/JsonValue.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

JsonValue::JsonValue(std::nullptr_t) : value_(std::make_shared<Json>()) {}

JsonValue::JsonValue(bool value) : value_(std::make_shared<Json>(value)) {}

JsonValue::JsonValue(int value) : value_(std::make_shared<Json>(value)) {}

JsonValue::JsonValue(long long value) : value_(std::make_shared<Json>(value)) {}

JsonValue::JsonValue(double value) : value_(std::make_shared<Json>(value)) {}

JsonValue::JsonValue(const char* value) : value_(std::make_shared<Json>(value)) {}

JsonValue::JsonValue(const std::string& value) : value_(std::make_shared<Json>(value)) {}

JsonValue::JsonValue(const JsonArray& values) {
    const auto array = std::make_shared<Json>(Json::array());
    for (const JsonValue& value : values) array->push_back(*value.value_);
    value_ = array;
}

JsonValue::JsonValue(const JsonObject& members) {
    const auto object = std::make_shared<Json>(Json::object());
    for (const JsonMember& member : members) (*object)[member.name] = *member.value.value_;
    value_ = object;
}

std::string JsonValue::indented() const {
    return value_->dump(4, ' ', false, Json::error_handler_t::replace);
}

std::string JsonValue::inOneLine() const {
    return value_->dump(-1, ' ', false, Json::error_handler_t::replace);
}
