#ifndef SHARED_COMPLETION_H
#define SHARED_COMPLETION_H

#include <functional>
#include <string>
#include <vector>

#include "shared/CommandTree.h"

// What can come next on a command line, for the scripts that make a shell complete it.

// Names for an option or argument that the parser has no list of. `before` has the arguments by
// their places that the command got so far.
using CompletionValues = std::function<std::vector<std::string>(
    const OptionNode& option, const std::vector<std::string>& before)>;

// The words that can come after `words`, which are whole. Where a value comes, its names only;
// else commands, options and the names of the next argument.
std::vector<std::string> completionsAfter(const CommandNode& program,
                                          const std::vector<std::string>& words,
                                          const CompletionValues& values);

#endif
