#ifndef TESTS_LINES_H
#define TESTS_LINES_H

#include <string>
#include <vector>

// Texts in order: log lines, output lines, names or packets.
using Lines = std::vector<std::string>;

#endif
