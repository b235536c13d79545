#include "EventScript.h"

#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

namespace {

// A quoted word of a script. Keeps every byte.
std::string quoted(const std::string& text) {
    std::string word = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') word += '\\';
        word += c == '\n' ? "\\n" : std::string(1, c);
    }
    return word + "\"";
}

// The shortest text that reads back as the same number, with a decimal point in every locale.
std::string textOf(double number) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, number);
    return std::string(text, end.ptr);
}

std::string wordOf(const EventValue& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) return quoted(*text);
    if (const auto* const flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* const number = std::get_if<std::int32_t>(&value)) {
        return std::to_string(*number);
    }
    return textOf(std::get<double>(value));
}

bool isListUpdate(const Event& event) {
    return std::string_view(event.kind->name) == "instance-list-updated";
}

bool endsImageInstallation(const Event& event) {
    return std::string_view(event.kind->name) == "image-install-progress" &&
           std::get<std::int32_t>(event.values[1]) == 2;
}

}  // namespace

std::string EventScript::start() { return "# Recorded by bridgectl events --record.\n"; }

std::string EventScript::add(const Event& event) {
    if (waiting_ && endsImageInstallation(event)) waiting_.reset();
    std::string lines = finish();
    if (isListUpdate(event)) {
        waiting_ = event;
        return lines;
    }
    return lines + linesOf(event);
}

std::string EventScript::finish() {
    if (!waiting_) return {};
    const std::string lines = linesOf(*waiting_);
    waiting_.reset();
    return lines;
}

std::string EventScript::linesOf(const Event& event) {
    if (!first_) first_ = event.moment;
    // Measured from the first event, so that rounding errors do not add up.
    const long long since =
        std::chrono::duration_cast<std::chrono::milliseconds>(event.moment - *first_).count();
    std::string lines;
    if (since > written_) lines = "pause " + std::to_string(since - written_) + "\n";
    written_ = since;
    lines.append("event ").append(event.kind->name);
    for (const EventValue& value : event.values) lines += " " + wordOf(value);
    return lines + "\n";
}
