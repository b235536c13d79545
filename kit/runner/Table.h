#ifndef KIT_TABLE_H
#define KIT_TABLE_H

#include <string>
#include <string_view>
#include <vector>

// One check: the question, the sentence that claims the answer, and the command that decides it.
struct Check {
    std::string id;
    std::string decides;
    std::string page;                    // relative to the tree, "docs/reference/limits.md"
    std::string sentence;                // part of that page, with single blanks
    std::vector<std::string> command;    // a file of the kit, or, without "/", a program in PATH
    std::vector<std::string> needs;      // elements of kKitNeeds
    std::string tool;                    // another program in PATH that it needs, or empty
    std::vector<std::string> variables;  // environment variables, "NAME=VALUE"
    int limit = 300;                     // seconds
    bool has(std::string_view need) const;
};

// Needs of checks: Windows, not Wine; write access to HKEY_LOCAL_MACHINE; a start without
// elevation; a user who accepts or declines a prompt.
constexpr std::string_view kKitNeeds[] = {"windows", "elevated", "plain", "prompt"};

struct Table {
    std::vector<Check> checks;
    std::string fault;  // empty if the text is valid
};

// Reads checks.txt. A check begins with "[id]", followed by a line "name = value" for each member.
// Lines that begin with "#" are comments. Blanks separate the words of lists. In commands and
// variables, "{kit}" is replaced by the kit's folder and "{tool}" by the path of the tool.
Table readTable(std::string_view text);

#endif
