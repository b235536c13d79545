#ifndef SHARED_HELPTEXT_H
#define SHARED_HELPTEXT_H

#include <string>

#include "shared/CommandTree.h"

// The help of a command. Its details have examples first, in lines that begin with "Example: ".
// Lines that begin with a space are shown unchanged; other lines are joined and wrapped.

// For a terminal, in lines of at most 80 columns. `title` is the command with its program:
// "bridgectl conf get".
std::string helpText(const CommandNode& command, const std::string& title);

// The sections of a Markdown page about a program and all its commands. Options that the program
// itself has are left out of its commands.
std::string helpMarkdown(const CommandNode& program);

#endif
