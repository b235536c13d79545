#ifndef STANDINS_STANDINDEFAULTS_H
#define STANDINS_STANDINDEFAULTS_H

#include <string>
#include <string_view>
#include <vector>

#include "StandinEvents.h"

// The default behaviour of a stand-in without a script.

// Whether the word is a command ("launchApp") or the name of a request ("plrLaunchAppRpc").
bool standinIsCommand(std::string_view word);

// The events that report the immediate success of a command line with "--cmd". Empty for a command
// that no event reports, or one that lacks an option.
std::vector<StandinEvent> standinDefaultEvents(const std::vector<std::string>& arguments);

#endif
