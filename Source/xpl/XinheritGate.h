#ifndef XPL_XINHERITGATE_H
#define XPL_XINHERITGATE_H

#include <mutex>

#include "xpl/Xattributes.h"

// Keeps two things apart in this process: the time in which a file is open that is going to be
// replaced, and the start of a child process. Files are inheritable, so a child that started in
// between would hold the file for its whole life, and replacing it would fail for every program.
// Hold it from before the open until after the close, or around the process creation. Taken last:
// nobody waits for another lock while holding it.
std::mutex& xinheritGate() noexcept;

#endif
