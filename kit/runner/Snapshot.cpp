#include "Snapshot.h"

std::vector<std::string> differences(const Snapshot& before, const Snapshot& after) {
    std::vector<std::string> lines;
    for (const auto& [name, content] : before) {
        const auto found = after.find(name);
        if (found == after.end()) {
            lines.push_back("- " + name);
        } else if (found->second != content) {
            lines.push_back("* " + name);
        }
    }
    for (const auto& [name, content] : after) {
        if (before.find(name) == before.end()) lines.push_back("+ " + name);
    }
    return lines;
}
