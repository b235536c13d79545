#ifndef BRIDGECTL_DOCTOR_CONFIGURATIONFINDINGS_H
#define BRIDGECTL_DOCTOR_CONFIGURATIONFINDINGS_H

#include <string_view>

#include "doctor/Finding.h"

// Problems in the text of a configuration file, with line numbers from 1. Checks all lines, even
// those after the one at which the library stops.
Findings configurationFindings(std::string_view content);

#endif
