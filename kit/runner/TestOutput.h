#ifndef KIT_TESTOUTPUT_H
#define KIT_TESTOUTPUT_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Outcome.h"

// One test of a test program's output.
struct TestRun {
    std::string name;  // "Suite.Test"
    Outcome outcome = Outcome::Failed;
    std::string reason;  // of a skipped or failed one
    long milliseconds = 0;
};

struct TestOutput {
    std::vector<TestRun> tests;
    std::vector<std::pair<std::string, std::string>> figures;  // of lines "[figure] NAME VALUE"
};

// Reads what a GoogleTest program prints. A test that has begun and has no end failed: its process
// is gone.
TestOutput readTestOutput(std::string_view text);

// What the tests say together: one failure is a failure, and skipped tests alone are skipped. No
// test at all is a failure.
Outcome outcomeOf(const std::vector<TestRun>& tests);

#endif
