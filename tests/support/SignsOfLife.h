#ifndef TESTS_SIGNSOFLIFE_H
#define TESTS_SIGNSOFLIFE_H

#include <cstddef>
#include <string>

#include "support/TempFolder.h"

// Lets a test wait until the children that the library started are really running. Killing a child
// earlier leaves a Wine console process behind, which never ends and keeps the test program's
// output open.
class SignsOfLife {
 public:
    // For one more child, which is to hand it to leaveSignOfLife().
    std::string next();

    // Waits, for a minute at most. False if a child has left no sign.
    bool allArrived() const;

 private:
    TempFolder folder_;
    std::size_t children_ = 0;
};

void leaveSignOfLife(const std::string& sign);

#endif
