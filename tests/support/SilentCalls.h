#ifndef TESTS_SILENTCALLS_H
#define TESTS_SILENTCALLS_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/LogCapture.h"
#include "support/Subprocess.h"

constexpr int kSomeLines = -1;  // one or more

// A call with the log switched off.
struct SilentCall {
    const char* what;
    int result;
    int lines;  // that were not logged
    std::function<int()> call;
};

// Makes the calls in order with every level off. They return their results and print nothing.
inline void expectSilence(const std::vector<SilentCall>& calls) {
    for (const SilentCall& each : calls) {
        SCOPED_TRACE(each.what);
        const LogOff off;
        EXPECT_EQ(each.call(), each.result);
        const int lines = off.refused();
        EXPECT_TRUE(each.lines == kSomeLines ? lines > 0 : lines == each.lines) << lines;
        EXPECT_EQ(off.printed(), 0);
    }
}

// A subprocess that switches its log off ends with a fatal break and prints nothing.
inline void expectSilentBreak(const std::string& subprocess,
                              const SubprocessArguments& arguments = {}) {
    const ChildResult result = runSubprocess(subprocess, arguments);
    const std::string what = arguments.empty() ? subprocess : arguments[0];
    EXPECT_EQ(result.status, kFatalStatus) << what;
    EXPECT_EQ(result.out, "") << what;
}

#endif
