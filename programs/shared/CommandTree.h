#ifndef SHARED_COMMANDTREE_H
#define SHARED_COMMANDTREE_H

#include <string>
#include <vector>

#include "shared/JsonValue.h"

// A program's commands and options as its parser knows them.

struct OptionNode {
    std::string name;  // "--count", or "INSTANCE" for an argument by its place
    std::string help;
    bool isPositional = false;
    bool isRequired = false;
    bool takesValue = false;
    bool needsValue = false;           // the next word is its value, whatever that is
    std::vector<std::string> choices;  // empty: any text
};

struct CommandNode {
    std::string name;
    std::string summary;
    std::string details;
    std::vector<OptionNode> options;
    std::vector<CommandNode> commands;
};

JsonValue commandJson(const CommandNode& command);

#endif
