#include "shared/Completion.h"

#include <algorithm>
#include <cstddef>

namespace {

using Words = std::vector<std::string>;

template <typename Nodes>
const typename Nodes::value_type* find(const Nodes& nodes, const std::string& name) {
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [&name](const auto& node) { return node.name == name; });
    return found == nodes.end() ? nullptr : &*found;
}

bool isOption(const std::string& word) { return word.size() > 1 && word.front() == '-'; }

// The state after some words of a command line.
struct Place {
    const CommandNode* command;
    Words before;                         // the positional arguments so far
    const OptionNode* waiting = nullptr;  // the option that needs the next word as its value
    bool isLiteral = false;               // after "--" nothing is an option
};

void advance(Place& place, const std::string& word) {
    if (place.waiting != nullptr) {
        place.waiting = nullptr;
    } else if (!place.isLiteral && word == "--") {
        place.isLiteral = true;
    } else if (!place.isLiteral && isOption(word)) {
        const OptionNode* const option = find(place.command->options, word);
        if (option != nullptr && option->needsValue) place.waiting = option;
    } else if (const CommandNode* const inner = find(place.command->commands, word)) {
        place.command = inner;
        place.before.clear();
    } else {
        place.before.push_back(word);
    }
}

// The next positional argument, or null.
const OptionNode* nextArgument(const Place& place) {
    std::size_t index = 0;
    for (const OptionNode& option : place.command->options) {
        if (option.isPositional && index++ == place.before.size()) return &option;
    }
    return nullptr;
}

Words namesFor(const OptionNode& option, const Place& place, const CompletionValues& values) {
    return option.choices.empty() ? values(option, place.before) : option.choices;
}

}  // namespace

std::vector<std::string> completionsAfter(const CommandNode& program,
                                          const std::vector<std::string>& words,
                                          const CompletionValues& values) {
    Place place{&program, {}};
    for (const std::string& word : words) advance(place, word);
    if (place.waiting != nullptr) return namesFor(*place.waiting, place, values);
    Words next;
    if (const OptionNode* const argument = nextArgument(place)) {
        next = namesFor(*argument, place, values);
    }
    if (place.isLiteral) return next;
    for (const CommandNode& inner : place.command->commands) next.push_back(inner.name);
    for (const OptionNode& option : place.command->options) {
        if (!option.isPositional) next.push_back(option.name);
    }
    return next;
}
