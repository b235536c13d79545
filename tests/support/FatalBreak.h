#ifndef TESTS_FATALBREAK_H
#define TESTS_FATALBREAK_H

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>

#include "support/LogCapture.h"
#include "support/Subprocess.h"

// The lines of a subprocess that must end with a fatal break and logs to its standard output. The
// last one, the break's own, is without its line number and its time: logged::fatalBreak().
inline Lines linesUntilBreak(const std::string& subprocess,
                             const SubprocessArguments& arguments = {}) {
    const ChildResult result = runSubprocess(subprocess, arguments);
    EXPECT_EQ(result.status, kFatalStatus) << result.out;
    Lines lines = logMessages(result.out);
    lines.erase(std::remove(lines.begin(), lines.end(), std::string()), lines.end());
    static const std::regex end(R"((DEBUG BREAK: [^:]+):[0-9]+ 0\.000000\(\)$)");
    if (!lines.empty()) lines.back() = std::regex_replace(lines.back(), end, "$1");
    return lines;
}

#endif
