#ifndef BRIDGECTL_DOCTOR_FINDING_H
#define BRIDGECTL_DOCTOR_FINDING_H

#include <string>
#include <vector>

// What the doctor has looked at.

enum class FindingLevel {
    Ok,
    Note,     // may be on purpose
    Problem,  // keeps a front end from starting or working
};

struct Finding {
    FindingLevel level;
    std::string check;  // what was looked at: "registry", "lock"
    std::string found;
    std::string todo;  // empty when there is nothing to do
};

using Findings = std::vector<Finding>;

// Name of a level: "ok", "note", "problem".
const char* levelName(FindingLevel level);

#endif
