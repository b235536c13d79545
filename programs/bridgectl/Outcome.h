#ifndef BRIDGECTL_OUTCOME_H
#define BRIDGECTL_OUTCOME_H

#include <string>
#include <vector>

#include "Event.h"

// What an event says about the work that a program was started for, whose texts are the arguments
// of the command.
enum class Outcome {
    Unknown,  // it is about something else, or about work that goes on
    Success,
    Failure,
};

using OutcomeOf = Outcome (*)(const Event& event, const std::vector<std::string>& texts);

Outcome launchOutcome(const Event& event, const std::vector<std::string>& texts);
Outcome installApkOutcome(const Event& event, const std::vector<std::string>& texts);
Outcome uninstallOutcome(const Event& event, const std::vector<std::string>& texts);
Outcome installImageOutcome(const Event& event, const std::vector<std::string>& texts);
Outcome createInstanceOutcome(const Event& event, const std::vector<std::string>& texts);

#endif
