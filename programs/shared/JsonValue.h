#ifndef SHARED_JSONVALUE_H
#define SHARED_JSONVALUE_H

#include <cstddef>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

// JSON that a program prints. It is built here without the JSON library, which takes the compiler
// longer than the rest of most files.

class JsonValue;
struct JsonMember;

using JsonArray = std::vector<JsonValue>;
using JsonObject = std::vector<JsonMember>;  // in the order in which they are printed

// A value that does not change; copies share it.
class JsonValue {
 public:
    // Not explicit: what is put into an array or object is such a value.
    JsonValue(std::nullptr_t);
    JsonValue(bool value);
    JsonValue(int value);
    JsonValue(long long value);
    JsonValue(double value);
    JsonValue(const char* value);
    JsonValue(const std::string& value);
    JsonValue(const JsonArray& values);
    JsonValue(const JsonObject& members);

    // With U+FFFD for bytes that are not UTF-8, and null for numbers that are none: in lines
    // indented by four blanks a level, or all in one line; without a line feed at the end.
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
