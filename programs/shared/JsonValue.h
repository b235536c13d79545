#ifndef SHARED_JSONVALUE_H
#define SHARED_JSONVALUE_H

#include <cstddef>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

// JSON output. This header does not include the JSON library, which would slow down the compilation
// of most files.

class JsonValue;
struct JsonMember;

using JsonArray = std::vector<JsonValue>;
using JsonObject = std::vector<JsonMember>;  // in the order in which they are printed

// An immutable value. Copies share it.
class JsonValue {
 public:
    // Implicit, so that arrays and objects can be written as initializer lists.
    JsonValue(std::nullptr_t);
    JsonValue(bool value);
    JsonValue(int value);
    JsonValue(long long value);
    JsonValue(double value);
    JsonValue(const char* value);
    JsonValue(const std::string& value);
    JsonValue(const JsonArray& values);
    JsonValue(const JsonObject& members);

    // The value indented by four spaces per level, or in one line; without a line feed at the end.
    // Bytes that are not UTF-8 become U+FFFD, and numbers that are not finite become null.
    std::string indented() const;
    std::string inOneLine() const;

 private:
    std::shared_ptr<const nlohmann::ordered_json> value_;
};

struct JsonMember {
    std::string name;
    JsonValue value;
};

#endif
