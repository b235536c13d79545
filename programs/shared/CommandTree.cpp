#include "shared/CommandTree.h"

#include "shared/JsonValue.h"

namespace {

JsonValue optionJson(const OptionNode& option) {
    JsonObject object{{"name", option.name},
                      {"help", option.help},
                      {"required", option.isRequired},
                      {"takesValue", option.takesValue}};
    if (!option.choices.empty()) {
        object.push_back({"choices", JsonArray(option.choices.begin(), option.choices.end())});
    }
    return object;
}

}  // namespace

JsonValue commandJson(const CommandNode& command) {
    JsonArray options;
    for (const OptionNode& option : command.options) options.push_back(optionJson(option));
    JsonArray commands;
    for (const CommandNode& inner : command.commands) commands.push_back(commandJson(inner));
    return JsonObject{{"name", command.name},
                      {"summary", command.summary},
                      {"details", command.details},
                      {"options", options},
                      {"commands", commands}};
}
