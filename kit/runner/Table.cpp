#include "Table.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
        const std::string_view word = text.substr(0, text.find(' '));
        words.emplace_back(word);
        text.remove_prefix(word.size());
    }
    return words;
}

bool isNeed(const std::string& word) {
    return std::find(std::begin(kKitNeeds), std::end(kKitNeeds), word) != std::end(kKitNeeds);
}

// Sets a member; false for an unknown name or an invalid value.
bool setMember(Check& check, std::string_view name, std::string_view value) {
    if (name == "decides") {
        check.decides = value;
    } else if (name == "page") {
        check.page = value;
    } else if (name == "sentence") {
        check.sentence = value;
    } else if (name == "run") {
        check.command = wordsOf(value);
    } else if (name == "tool") {
        check.tool = value;
    } else if (name == "set") {
        check.variables = wordsOf(value);
    } else if (name == "needs") {
        check.needs = wordsOf(value);
        return std::all_of(check.needs.begin(), check.needs.end(), isNeed);
    } else if (name == "limit") {
        check.limit = std::atoi(std::string(value).c_str());
        return check.limit > 0;
    } else {
        return false;
    }
    return true;
}

// A missing or duplicate member of a check; empty if there is none.
std::string faultOf(const std::vector<Check>& checks) {
    std::vector<std::string> ids;
    for (const Check& check : checks) {
        if (std::find(ids.begin(), ids.end(), check.id) != ids.end()) return check.id + " twice";
        if (check.decides.empty()) return check.id + " decides nothing";
        if (check.command.empty()) return check.id + " runs nothing";
        if (check.page.empty() != check.sentence.empty()) return check.id + " has half a claim";
        ids.push_back(check.id);
    }
    return checks.empty() ? "no checks" : "";
}

// Parses a line; false if it is invalid.
bool readLine(std::string_view line, std::vector<Check>& checks) {
    if (line.front() == '[' && line.back() == ']') {
        checks.emplace_back().id = trimmed(line.substr(1, line.size() - 2));
        return !checks.back().id.empty();
    }
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos || checks.empty()) return false;
    return setMember(checks.back(), trimmed(line.substr(0, sign)), trimmed(line.substr(sign + 1)));
}

}  // namespace

bool Check::has(std::string_view need) const {
    return std::find(needs.begin(), needs.end(), need) != needs.end();
}

Table readTable(std::string_view text) {
    Table table;
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view whole = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), whole.size() + 1));
        const std::string_view line = trimmed(whole);
        if (line.empty() || line.front() == '#' || readLine(line, table.checks)) continue;
        table.fault = "line " + std::to_string(number) + ": " + std::string(line);
        return table;
    }
    table.fault = faultOf(table.checks);
    return table;
}
