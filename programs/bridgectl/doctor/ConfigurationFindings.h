#ifndef BRIDGECTL_DOCTOR_CONFIGURATIONFINDINGS_H
#define BRIDGECTL_DOCTOR_CONFIGURATIONFINDINGS_H

#include <string_view>

#include "doctor/Finding.h"

// What is wrong with the text of a configuration file, by the numbers of its lines, which begin at
// 1. Looks at every line, also behind the one that the library stops at.
Findings configurationFindings(std::string_view content);

#endif
