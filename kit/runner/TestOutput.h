#ifndef KIT_TESTOUTPUT_H
#define KIT_TESTOUTPUT_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Outcome.h"

// One test in the output of a test program.
struct TestRun {
    std::string name;  // "Suite.Test"
    Outcome outcome = Outcome::Failed;
    std::string reason;  // why it was skipped or failed
    long milliseconds = 0;
};

struct TestOutput {
    std::vector<TestRun> tests;
    std::vector<std::pair<std::string, std::string>> figures;  // from lines "[figure] NAME VALUE"
};

// Reads the output of GoogleTest. A test that began and did not end has failed.
TestOutput readTestOutput(std::string_view text);

// Failed if a test failed or none ran, skipped if all were skipped, else passed.
Outcome outcomeOf(const std::vector<TestRun>& tests);

#endif
