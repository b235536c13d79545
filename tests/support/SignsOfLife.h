#ifndef TESTS_SIGNSOFLIFE_H
#define TESTS_SIGNSOFLIFE_H

#include <cstddef>
#include <string>

#include "support/TempFolder.h"

// Tells when children that the library starts are running. One that is killed while it starts
// leaves a process of Wine's console behind for good, which keeps the output of the test program
// open.
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
