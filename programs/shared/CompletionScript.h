#ifndef SHARED_COMPLETIONSCRIPT_H
#define SHARED_COMPLETIONSCRIPT_H

#include <string>

// Scripts that make a shell complete a program's command line. They call the program with "complete
// -- WORD...", where the words are those before the incomplete one.
std::string bashCompletion(const std::string& program);
std::string powershellCompletion(const std::string& program);

#endif
