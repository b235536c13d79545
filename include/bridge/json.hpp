/**
 * @file json.hpp
 * @brief Parses the library's listings: arrays of objects with strings and integers. Not for
 * hosts.
 */
#ifndef BRIDGE_JSON_HPP
#define BRIDGE_JSON_HPP

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bridge::detail {

/** The members of an object. A number is stored as its digits. */
using JsonObject = std::map<std::string, std::string, std::less<>>;

/** Parses one text. Throws std::runtime_error for JSON that the library does not write. */
class JsonReader {
 public:
    explicit JsonReader(std::string_view text) : rest_(text) {}

    std::vector<JsonObject> objects() {
        std::vector<JsonObject> all;
        expect('[');
        if (take(']')) return all;
        do {
            all.push_back(object());
        } while (take(','));
        expect(']');
        return all;
    }

 private:
    JsonObject object() {
        JsonObject members;
        expect('{');
        if (take('}')) return members;
        do {
            skipBlanks();
            const std::string name = text();
            expect(':');
            skipBlanks();
            members[name] = peek() == '"' ? text() : number();
        } while (take(','));
        expect('}');
        return members;
    }

    std::string text() {
        std::string value;
        expect('"');
        while (peek() != '"') {
            const char c = next();
            if (c == '\\') {
                appendEscaped(value);
            } else {
                value += c;
            }
        }
        next();
        return value;
    }

    void appendEscaped(std::string& value) {
        constexpr std::string_view kLetters = "\"\\/bfnrt";
        constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
        const char c = next();
        const std::size_t index = kLetters.find(c);
        if (index != std::string_view::npos) {
            value += kMeanings[index];
        } else if (c == 'u') {
            appendUtf8(value, codePoint());
        } else {
            fail();
        }
    }

    /** The code point after "\u": four digits, or a surrogate pair. */
    std::uint32_t codePoint() {
        const std::uint32_t first = fourDigits();
        if (first < 0xD800 || first > 0xDBFF || rest_.substr(0, 2) != "\\u") return first;
        rest_.remove_prefix(2);
        return 0x10000 + ((first - 0xD800) << 10U) + (fourDigits() - 0xDC00);
    }

    std::uint32_t fourDigits() {
        std::string digits;
        for (int i = 0; i < 4; ++i) digits += next();
        return static_cast<std::uint32_t>(std::strtoul(digits.c_str(), nullptr, 16));
    }

    static void appendUtf8(std::string& value, std::uint32_t code) {
        const auto add = [&value](std::uint32_t byte) { value += static_cast<char>(byte); };
        if (code < 0x80) return add(code);
        if (code < 0x800) {
            add(0xC0U | (code >> 6U));
        } else if (code < 0x10000) {
            add(0xE0U | (code >> 12U));
            add(0x80U | ((code >> 6U) & 0x3FU));
        } else {
            add(0xF0U | (code >> 18U));
            add(0x80U | ((code >> 12U) & 0x3FU));
            add(0x80U | ((code >> 6U) & 0x3FU));
        }
        add(0x80U | (code & 0x3FU));
    }

    std::string number() {
        const std::size_t length = rest_.find_first_not_of("-0123456789");
        const std::string digits(rest_.substr(0, length));
        if (digits.empty()) fail();
        rest_.remove_prefix(digits.size());
        return digits;
    }

    void skipBlanks() {
        const std::size_t start = rest_.find_first_not_of(" \t\r\n");
        rest_.remove_prefix(start == std::string_view::npos ? rest_.size() : start);
    }

    char peek() const {
        if (rest_.empty()) fail();
        return rest_.front();
    }

    char next() {
        const char c = peek();
        rest_.remove_prefix(1);
        return c;
    }

    bool take(char wanted) {
        skipBlanks();
        if (peek() != wanted) return false;
        rest_.remove_prefix(1);
        return true;
    }

    void expect(char wanted) {
        if (!take(wanted)) fail();
    }

    [[noreturn]] static void fail() { throw std::runtime_error("a listing is not as expected"); }

    std::string_view rest_;
};

}  // namespace bridge::detail

#endif
