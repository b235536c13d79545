#include "StandinScript.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "StandinDefaults.h"

namespace {

using Words = std::vector<std::string>;

// Limits the memory for events.
constexpr int kMaxFlood = 1'000'000;

constexpr std::string_view kBlanks = " \t\r";

// Takes a word whose opening double quote has been removed.
bool takeQuoted(std::string_view& rest, std::string& word) {
    while (!rest.empty()) {
        char c = rest.front();
        rest.remove_prefix(1);
        if (c == '"') return rest.empty() || rest.find_first_of(" \t\r#") == 0;
        if (c == '\\') {
            if (rest.empty() || std::string_view("\"\\n").find(rest.front()) == rest.npos) {
                return false;
            }
            c = rest.front() == 'n' ? '\n' : rest.front();
            rest.remove_prefix(1);
        }
        word += c;
    }
    return false;
}

// Splits a line without its comment into words. False if a quote is unbalanced.
bool splitLine(std::string_view rest, Words& words) {
    for (;;) {
        rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
        if (rest.empty() || rest.front() == '#') return true;
        std::string& word = words.emplace_back();
        if (rest.front() == '"') {
            rest.remove_prefix(1);
            if (!takeQuoted(rest, word)) return false;
        } else {
            word = rest.substr(0, rest.find_first_of(" \t\r#"));
            rest.remove_prefix(word.size());
        }
    }
}

bool parseNumber(std::string_view text, int& number) {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && stop == text.data() + text.size() && number >= 0;
}

bool parseHex(std::string_view text, std::string& bytes) {
    bytes.clear();
    if (text.empty() || text.size() % 2 != 0) return false;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        int byte = 0;
        const char* const first = text.data() + i;
        const auto [stop, error] = std::from_chars(first, first + 2, byte, 16);
        if (error != std::errc() || stop != first + 2) return false;
        bytes += static_cast<char>(byte);
    }
    return true;
}

std::string replaced(std::string text, std::string_view from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

bool addEvent(StandinSteps& steps, const Words& words, std::string& error) {
    std::optional<StandinEvent> event = standinParseEvent(words, error);
    if (!event) return false;
    if (steps.empty()) steps.emplace_back();
    steps.back().events.push_back(std::move(*event));
    return true;
}

bool addFlood(StandinSteps& steps, Words words, std::string& error) {
    int count = 0;
    if (words.empty() || !parseNumber(words[0], count)) return false;
    if (count == 0 || count > kMaxFlood) return false;
    words.erase(words.begin());
    for (int i = 1; i <= count; ++i) {
        Words numbered = words;
        for (std::string& word : numbered) word = replaced(word, "{n}", std::to_string(i));
        if (!addEvent(steps, numbered, error)) return false;
    }
    return true;
}

bool addPause(StandinSteps& steps, const Words& words) {
    StandinStep step;
    if (words.size() != 1 || !parseNumber(words[0], step.pauseMs)) return false;
    steps.push_back(std::move(step));
    return true;
}

bool isStep(std::string_view directive) {
    return directive == "event" || directive == "event-flood" || directive == "pause";
}

// Adds the step in the words from `first` on: "event ...", "event-flood ..." or "pause ...".
bool addStep(StandinSteps& steps, const Words& words, std::size_t first, std::string& error) {
    const std::string& directive = words[first];
    Words rest(words.begin() + static_cast<std::ptrdiff_t>(first) + 1, words.end());
    if (directive == "pause") return addPause(steps, rest);
    if (directive == "event-flood") return addFlood(steps, std::move(rest), error);
    return directive == "event" && addEvent(steps, rest, error);
}

bool applyOn(StandinScript& script, const Words& words, std::string& error) {
    if (words.size() < 3) return false;
    if (!standinIsCommand(words[1])) {
        error = "no such command or request: " + words[1];
        return false;
    }
    return addStep(script.on[words[1]], words, 2, error);
}

bool applyNumber(StandinScript& script, std::string_view directive, int number) {
    const auto size = static_cast<std::size_t>(number);
    if (directive == "delay") {
        script.delayMs = number;
    } else if (directive == "split") {
        script.split = size;
    } else if (directive == "short") {
        script.cut = size;
    } else if (directive == "garbage") {
        script.garbage = size;
    } else if (directive == "quit-after") {
        script.quitAfter = number;
    } else if (directive == "event-split") {
        script.eventSplit = size;
    } else if (directive == "event-garbage") {
        script.eventGarbage = size;
    } else {
        return false;
    }
    return true;
}

bool applyWord(StandinScript& script, std::string_view directive) {
    if (directive == "close-early") return script.closeEarly = true;
    if (directive == "never-read") return script.neverRead = true;
    if (directive == "event-close-early") return script.eventCloseEarly = true;
    return false;
}

bool applyLine(StandinScript& script, const Words& words, std::string& error) {
    const std::string& directive = words[0];
    if (isStep(directive)) return addStep(script.atStart, words, 0, error);
    if (directive == "on") return applyOn(script, words, error);
    if (words.size() == 1) return applyWord(script, directive);
    if (words.size() != 2) return false;
    if (directive == "reply") return parseHex(words[1], script.reply);
    int number = 0;
    return parseNumber(words[1], number) && applyNumber(script, directive, number);
}

std::string_view trimmed(std::string_view line) {
    return line.substr(0, line.find_last_not_of(kBlanks) + 1);
}

}  // namespace

std::optional<StandinScript> standinParseScript(std::string_view text, std::string& error) {
    StandinScript script;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(text.size(), end + 1));
        Words words;
        std::string reason;
        if (splitLine(line, words)) {
            if (words.empty() || applyLine(script, words, reason)) continue;
        }
        error = "not understood: " + std::string(line);
        if (!reason.empty()) error += " (" + reason + ")";
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
