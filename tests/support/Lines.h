#ifndef TESTS_LINES_H
#define TESTS_LINES_H

#include <string>
#include <vector>

// Texts in order: the lines of a log or of an output, names, packets.
using Lines = std::vector<std::string>;

#endif
