#include "StandinScript.h"

#include <charconv>

namespace {

bool parseNumber(std::string_view text, int& number) {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && stop == text.data() + text.size() && number >= 0;
}

bool parseHex(std::string_view text, std::string& bytes) {
    bytes.clear();
    if (text.size() % 2 != 0) return false;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        int byte = 0;
        const char* const first = text.data() + i;
        const auto [stop, error] = std::from_chars(first, first + 2, byte, 16);
        if (error != std::errc() || stop != first + 2) return false;
        bytes += static_cast<char>(byte);
    }
    return true;
}

bool applyNumber(StandinScript& script, std::string_view wish, int number) {
    const auto size = static_cast<std::size_t>(number);
    if (wish == "delay") {
        script.delayMs = number;
    } else if (wish == "split") {
        script.split = size;
    } else if (wish == "short") {
        script.cut = size;
    } else if (wish == "garbage") {
        script.garbage = size;
    } else if (wish == "quit-after") {
        script.quitAfter = number;
    } else {
        return false;
    }
    return true;
}

bool applyLine(StandinScript& script, std::string_view line) {
    if (line == "close-early") return script.closeEarly = true;
    if (line == "never-read") return script.neverRead = true;
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) return false;
    const std::string_view wish = line.substr(0, blank);
    const std::string_view value = line.substr(blank + 1);
    if (wish == "reply") return parseHex(value, script.reply);
    int number = 0;
    return parseNumber(value, number) && applyNumber(script, wish, number);
}

std::string_view trimmed(std::string_view line) {
    line = line.substr(0, line.find('#'));
    while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.remove_suffix(1);
    return line;
}

}  // namespace

std::optional<StandinScript> standinParseScript(std::string_view text, std::string& error) {
    StandinScript script;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(text.size(), end + 1));
        if (line.empty() || applyLine(script, line)) continue;
        error = "not understood: " + std::string(line);
        return std::nullopt;
    }
    return script;
}

std::string standinReply(const StandinScript& script, std::size_t length) {
    std::string reply = script.reply;
    reply.resize(length, '\0');
    if (script.cut && *script.cut < length) reply.resize(*script.cut);
    return reply.append(script.garbage, '#');
}
