#ifndef KIT_OBSTACLE_H
#define KIT_OBSTACLE_H

#include <string>
#include <vector>

#include "Outcome.h"
#include "Table.h"

// Why a check is not run; the outcome is Passed for one that is.
struct Obstacle {
    Outcome outcome = Outcome::Passed;
    std::string reason;
};

// What a check meets here.
struct Conditions {
    bool isWine = false;
    bool isElevated = false;
    bool writesMachineKeys = false;       // below HKEY_LOCAL_MACHINE
    std::vector<std::string> takenFiles;  // of the kit, which are missing or changed
};

// Whether a name of a command is a file of the kit, and not a program of PATH.
bool isOfKit(const std::string& program);

// What keeps a check from being run; the answer of the user is not asked for, and no tool looked
// for.
Obstacle obstacleOf(const Check& check, const Conditions& conditions);

#endif
