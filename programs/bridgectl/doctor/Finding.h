#ifndef BRIDGECTL_DOCTOR_FINDING_H
#define BRIDGECTL_DOCTOR_FINDING_H

#include <string>
#include <vector>

// The result of a check of the doctor.

enum class FindingLevel {
    Ok,
    Note,     // may be intended
    Problem,  // keeps a front end from starting or working
};

struct Finding {
    FindingLevel level;
    std::string check;  // what was checked: "registry", "lock"
    std::string found;
    std::string todo;  // empty if there is nothing to do
};

using Findings = std::vector<Finding>;

// The name of a level: "ok", "note", "problem".
const char* levelName(FindingLevel level);

#endif
