#ifndef SHARED_COMPLETIONSCRIPT_H
#define SHARED_COMPLETIONSCRIPT_H

#include <string>

#include "shared/CommandTree.h"

// Scripts that make a shell complete a program's commands, options and the names that an argument
// is limited to.
std::string bashCompletion(const CommandNode& program);
std::string powershellCompletion(const CommandNode& program);

#endif
