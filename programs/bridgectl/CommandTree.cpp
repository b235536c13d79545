#include "CommandTree.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace {

// The help shows the names that an option is limited to as "{a,b}" in its type.
std::vector<std::string> choicesOf(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::size_t start = type.find('{');
    const std::size_t end = type.find('}', start);
    if (start == std::string::npos || end == std::string::npos) return {};
    return CLI::detail::split(type.substr(start + 1, end - start - 1), ',');
}

OptionNode optionNode(const CLI::Option& option) {
    OptionNode node;
    node.isPositional = option.get_positional();
    node.name = node.isPositional ? option.get_name(true) : "--" + option.get_lnames().front();
    node.help = option.get_description();
    node.isRequired = option.get_required();
    node.takesValue = option.get_items_expected_max() > 0;
    node.choices = choicesOf(option);
    return node;
}

nlohmann::ordered_json optionJson(const OptionNode& option) {
    nlohmann::ordered_json object{{"name", option.name},
                                  {"help", option.help},
                                  {"required", option.isRequired},
                                  {"takesValue", option.takesValue}};
    if (!option.choices.empty()) object["choices"] = option.choices;
    return object;
}

}  // namespace

CommandNode commandTree(const CLI::App& app) {
    CommandNode node{app.get_name(), app.get_description(), app.get_footer(), {}, {}};
    for (const CLI::Option* option : app.get_options()) node.options.push_back(optionNode(*option));
    const auto isAny = [](const CLI::App*) { return true; };
    for (const CLI::App* command : app.get_subcommands(isAny)) {
        node.commands.push_back(commandTree(*command));
    }
    return node;
}

nlohmann::ordered_json commandJson(const CommandNode& command) {
    nlohmann::ordered_json options = nlohmann::ordered_json::array();
    for (const OptionNode& option : command.options) options.push_back(optionJson(option));
    nlohmann::ordered_json commands = nlohmann::ordered_json::array();
    for (const CommandNode& inner : command.commands) commands.push_back(commandJson(inner));
    return {{"name", command.name},
            {"summary", command.summary},
            {"details", command.details},
            {"options", options},
            {"commands", commands}};
}
