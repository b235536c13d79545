// Values of JSON text.
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

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void appendEscape(std::string& out, char c) {
    constexpr std::string_view escaped = "\"\\\b\f\n\r\t";
    constexpr std::string_view names = "\"\\bfnrt";
    constexpr std::string_view digits = "0123456789abcdef";
    const std::size_t known = escaped.find(c);
    if (known != std::string_view::npos) {
        out.append(1, '\\').append(1, names[known]);
        return;
    }
    const std::size_t code = static_cast<unsigned char>(c);
    out.append("\\u00").append(1, digits[code >> 4]).append(1, digits[code & 15]);
}

bool needsEscape(char c) { return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\'; }

void appendEscaped(std::string& out, std::string_view text) {
    while (!text.empty()) {
        const auto end = std::find_if(text.begin(), text.end(), needsEscape);
        const auto plain = static_cast<std::size_t>(end - text.begin());
        out.append(text.substr(0, plain));
        if (plain == text.size()) return;
        appendEscape(out, text[plain]);
        text.remove_prefix(plain + 1);
    }
}

// Appends a text in quotes.
void appendText(std::string& out, std::string_view text) {
    out += '"';
    if (isAscii(text)) {
        appendEscaped(out, text);
    } else {
        // Bytes that are not UTF-8 become what Qt makes of them.
        const QByteArray bytes =
            QString::fromUtf8(text.data(), utlJsonLength(text.size())).toUtf8();
        appendEscaped(out, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
    }
    out += '"';
}

}  // namespace

int utlJsonLength(std::size_t length) {
    constexpr int limit = std::numeric_limits<int>::max();
    if (length > static_cast<std::size_t>(limit)) throw std::length_error("text too long for JSON");
    return static_cast<int>(length);
}

UtlJsonArray::UtlJsonArray(std::size_t size) { out_.reserve(size); }

void UtlJsonArray::object() {
    out_.append(hasObject_ ? "\n    },\n    {" : "    {");
    hasObject_ = true;
    hasMember_ = false;
}

void UtlJsonArray::startMember(std::string_view name) {
    out_.append(hasMember_ ? ",\n        \"" : "\n        \"").append(name).append("\": ");
    hasMember_ = true;
}

void UtlJsonArray::member(std::string_view name, std::string_view text) {
    startMember(name);
    appendText(out_, text);
}

void UtlJsonArray::member(std::string_view name, std::int32_t number) {
    startMember(name);
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    out_.append(digits, end);
}

std::string UtlJsonArray::take() {
    out_.append(hasObject_ ? "\n    }\n]\n" : "]\n");
    return std::move(out_);
}
