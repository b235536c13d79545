// Writing JSON.
#include "utl/UtlJson.h"

#include <QByteArray>
#include <QString>
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <utility>

namespace {

bool isPlain(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\';
}

// The escape sequence of a character that needs one.
std::string escapeOf(char c) {
    constexpr std::string_view escaped = "\"\\\b\f\n\r\t";
    constexpr std::string_view names = "\"\\bfnrt";
    constexpr std::string_view digits = "0123456789abcdef";
    const std::size_t known = escaped.find(c);
    if (known != std::string_view::npos) return {'\\', names[known]};
    const std::size_t code = static_cast<unsigned char>(c);
    return {'\\', 'u', '0', '0', digits[code >> 4], digits[code & 15]};
}

}  // namespace

int utlJsonLength(std::size_t length) {
    constexpr int limit = std::numeric_limits<int>::max();
    if (length > static_cast<std::size_t>(limit)) throw std::length_error("text too long for JSON");
    return static_cast<int>(length);
}

UtlJsonArray::UtlJsonArray(std::size_t size) {
    out_.resize(size);
    put("[\n");
}

void UtlJsonArray::put(std::string_view bytes) {
    if (bytes.size() > out_.size() - size_) out_.resize(2 * out_.size() + bytes.size());
    bytes.copy(&out_[size_], bytes.size());
    size_ += bytes.size();
}

// `text` is valid UTF-8.
void UtlJsonArray::putEscaped(std::string_view text) {
    for (const char c : text) {
        const bool isEscaped = static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
        if (isEscaped) {
            put(escapeOf(c));
        } else {
            put({&c, 1});
        }
    }
}

void UtlJsonArray::putText(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isPlain)) return put(text);
    // Converts invalid UTF-8 as Qt does.
    const QByteArray bytes = QString::fromUtf8(text.data(), utlJsonLength(text.size())).toUtf8();
    putEscaped({bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

void UtlJsonArray::object() {
    put(hasObject_ ? "\n    },\n    {" : "    {");
    hasObject_ = true;
    hasMember_ = false;
}

void UtlJsonArray::startMember(std::string_view name) {
    put(hasMember_ ? ",\n        \"" : "\n        \"");
    put(name);
    put("\": ");
    hasMember_ = true;
}

void UtlJsonArray::member(std::string_view name, std::string_view text) {
    startMember(name);
    put("\"");
    putText(text);
    put("\"");
}

void UtlJsonArray::member(std::string_view name, std::int32_t number) {
    startMember(name);
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    put({digits, static_cast<std::size_t>(end - digits)});
}

std::string UtlJsonArray::take() {
    put(hasObject_ ? "\n    }\n]\n" : "]\n");
    out_.resize(size_);
    return std::move(out_);
}
