#ifndef TESTS_SUBPROCESS_H
#define TESTS_SUBPROCESS_H

#include <string>
#include <vector>

#include "support/ChildProcess.h"

// A part of a test in its own process, for fatal calls and for state that a process keeps. The test
// binary starts itself again with the subprocess's name.
//
//     SUBPROCESS(readsUnknownKey) { ...; return 0; }
//     TEST(...) { EXPECT_EQ(runSubprocess("readsUnknownKey").status, kFatalStatus); }
using SubprocessArguments = std::vector<std::string>;
using SubprocessFunction = int (*)(const SubprocessArguments& arguments);

struct SubprocessEntry {
    SubprocessEntry(const char* name, SubprocessFunction function);
};

#define SUBPROCESS(name)                                                 \
    static int subprocess_##name(const SubprocessArguments& arguments);  \
    static const SubprocessEntry entry_##name(#name, subprocess_##name); \
    static int subprocess_##name([[maybe_unused]] const SubprocessArguments& arguments)

ChildResult runSubprocess(const std::string& name, const SubprocessArguments& arguments = {},
                          const ChildOptions& options = {});
ChildProcess startSubprocess(const std::string& name, const SubprocessArguments& arguments = {},
                             const ChildOptions& options = {});

// The output of a subprocess that must succeed, without carriage returns.
std::string subprocessOutput(const std::string& name, const SubprocessArguments& arguments = {});

#endif
