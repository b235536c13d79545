#ifndef KIT_OBSTACLE_H
#define KIT_OBSTACLE_H

#include <string>
#include <vector>

#include "Outcome.h"
#include "Table.h"

// The reason why a check is not run. The outcome is Passed if it can run.
struct Obstacle {
    Outcome outcome = Outcome::Passed;
    std::string reason;
};

// The conditions on this machine.
struct Conditions {
    bool isWine = false;
    bool isElevated = false;
    bool writesMachineKeys = false;       // below HKEY_LOCAL_MACHINE
    std::vector<std::string> takenFiles;  // missing or changed files of the kit
};

// Whether the program of a command is a file of the kit, not a program in PATH.
bool isOfKit(const std::string& program);

// The obstacle to a check. It neither asks the user nor searches PATH for tools.
Obstacle obstacleOf(const Check& check, const Conditions& conditions);

#endif
