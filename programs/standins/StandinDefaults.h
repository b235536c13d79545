#ifndef STANDINS_STANDINDEFAULTS_H
#define STANDINS_STANDINDEFAULTS_H

#include <string>
#include <string_view>
#include <vector>

#include "StandinEvents.h"

// What a stand-in does about a command line, as the product would, when its script says nothing.

// Whether the word is one of the commands ("launchApp") that the library starts the programs with,
// or the name of a request ("plrLaunchAppRpc").
bool standinIsCommand(std::string_view word);

// The events that report the work of a command line with "--cmd", done at once and with success;
// none for a command that no event reports, or that lacks an option.
std::vector<StandinEvent> standinDefaultEvents(const std::vector<std::string>& arguments);

#endif
