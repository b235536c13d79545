#ifndef BRIDGECTL_COMPLETIONNAMES_H
#define BRIDGECTL_COMPLETIONNAMES_H

#include <string>
#include <vector>

#include "shared/CommandTree.h"

// The names that complete an argument or option of the program: keys for KEY, instances for
// INSTANCE and --instance, the apps of the instance before it for PACKAGE, and client ids for
// --client. Read from the product's files, without the library. Nothing for any other.
std::vector<std::string> completionNames(const OptionNode& option,
                                         const std::vector<std::string>& before);

// The client ids that the library takes.
const std::vector<std::string>& clientIds();

#endif
