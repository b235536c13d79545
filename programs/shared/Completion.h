#ifndef SHARED_COMPLETION_H
#define SHARED_COMPLETION_H

#include <functional>
#include <string>
#include <vector>

#include "shared/CommandTree.h"

// Completion of command lines in a shell.

// Names for an option or argument without a fixed list of choices. `before` has the positional
// arguments so far.
using CompletionValues = std::function<std::vector<std::string>(
    const OptionNode& option, const std::vector<std::string>& before)>;

// The words that can follow the complete words in `words`. If the last word is an option that needs
// a value, these are its values; otherwise values of the next argument, subcommands and options.
std::vector<std::string> completionsAfter(const CommandNode& program,
                                          const std::vector<std::string>& words,
                                          const CompletionValues& values);

#endif
