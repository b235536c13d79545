#include "Obstacle.h"

#include <algorithm>

bool isOfKit(const std::string& program) { return program.find('/') != std::string::npos; }

Obstacle obstacleOf(const Check& check, const Conditions& conditions) {
    if (check.has("windows") && conditions.isWine) return {Outcome::NeedsWindows, "this is Wine"};
    if (check.has("elevated") && !conditions.writesMachineKeys) {
        return {Outcome::Skipped, "needs elevation, to write to HKEY_LOCAL_MACHINE"};
    }
    if (check.has("plain") && conditions.isElevated) {
        return {Outcome::Skipped, "needs a start without elevation"};
    }
    const auto& taken = conditions.takenFiles;
    const std::string& program = check.command.front();
    if (std::find(taken.begin(), taken.end(), program) != taken.end()) {
        return {Outcome::Skipped, program + " is missing or changed"};
    }
    return {};
}
