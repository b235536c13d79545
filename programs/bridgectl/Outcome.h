#ifndef BRIDGECTL_OUTCOME_H
#define BRIDGECTL_OUTCOME_H

#include <string>
#include <vector>

#include "Event.h"

// The outcome of a command's work, according to an event. `texts` are the command's arguments.
enum class Outcome {
    Unknown,  // about something else, or the work is not finished
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
