#ifndef BRIDGECTL_COMPLETIONNAMES_H
#define BRIDGECTL_COMPLETIONNAMES_H

#include <string>
#include <vector>

#include "shared/CommandTree.h"

// Completions of an argument or option: keys for KEY, instances for INSTANCE and --instance, the
// apps of the preceding instance for PACKAGE, client ids for --client, nothing for others. Reads
// the product's files and does not use the library.
std::vector<std::string> completionNames(const OptionNode& option,
                                         const std::vector<std::string>& before);

// The client ids that the library accepts.
const std::vector<std::string>& clientIds();

#endif
