#ifndef SHARED_COMMANDTREE_H
#define SHARED_COMMANDTREE_H

#include <string>
#include <vector>

#include "shared/JsonValue.h"

// A program's commands and options, as its parser declares them.

struct OptionNode {
    std::string name;  // "--count", or "INSTANCE" for a positional argument
    std::string help;
    bool isPositional = false;
    bool isRequired = false;
    bool takesValue = false;
    bool needsValue = false;           // the next word is always its value
    bool isList = false;               // takes several values
    std::vector<std::string> choices;  // empty: any text
    std::string shortName;             // "-h"; most options have none
    std::string valueName;             // "NUMBER"
    std::string defaultText;           // empty: none is shown
    std::string heading;               // in the help: "Options"
};

struct CommandNode {
    std::string name;
    std::string summary;
    std::string details;
    std::vector<OptionNode> options;
    std::vector<CommandNode> commands;
    std::string section{};  // in the program's help: "Events"
};

JsonValue commandJson(const CommandNode& command);

#endif
