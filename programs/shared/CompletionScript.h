#ifndef SHARED_COMPLETIONSCRIPT_H
#define SHARED_COMPLETIONSCRIPT_H

#include <string>

// Scripts that make a shell complete a program's command line. They ask the program itself, by
// "complete -- WORD...", with the words before the one that is being typed.
std::string bashCompletion(const std::string& program);
std::string powershellCompletion(const std::string& program);

#endif
