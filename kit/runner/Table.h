#ifndef KIT_TABLE_H
#define KIT_TABLE_H

#include <string>
#include <string_view>
#include <vector>

// One check: what it decides, which sentence of which page claims the answer, and how it is run.
struct Check {
    std::string id;
    std::string decides;
    std::string page;                    // relative to the tree, "docs/reference/limits.md"
    std::string sentence;                // words of that page, with single blanks
    std::vector<std::string> command;    // a program of the kit, or one without "/" of PATH
    std::vector<std::string> needs;      // of kKitNeeds
    std::string tool;                    // a further program of PATH that it needs; mostly empty
    std::vector<std::string> variables;  // of its environment, "NAME=VALUE"
    int limit = 300;                     // seconds
    bool has(std::string_view need) const;
};

// What a check can need: a real Windows; a process with or without elevation; a question to the
// user, who may decline; a tool that must be on PATH.
constexpr std::string_view kKitNeeds[] = {"windows", "elevated", "plain", "prompt"};

struct Table {
    std::vector<Check> checks;
    std::string fault;  // empty: the text is a table
};

// Reads checks.txt. A check begins with "[id]" and has a line "name = value" for each member; lines
// that begin with "#" are comments. Words of a command are separated by blanks.
// In commands and variables "{kit}" stands for the folder of the programs, "{tool}" for the tool.
Table readTable(std::string_view text);

#endif
