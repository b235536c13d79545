#ifndef TESTS_SIGNSOFLIFE_H
#define TESTS_SIGNSOFLIFE_H

#include <cstddef>
#include <string>

#include "support/TempFolder.h"

// Waits until the children that the library started are running. Killing one earlier leaves a Wine
// console process that never ends and keeps the test program's output open.
class SignsOfLife {
 public:
    // The argument of leaveSignOfLife() for one more child.
    std::string next();

    // Waits up to a minute. False if a child has left no sign.
    bool allArrived() const;

 private:
    TempFolder folder_;
    std::size_t children_ = 0;
};

void leaveSignOfLife(const std::string& sign);

#endif
