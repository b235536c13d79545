#ifndef TESTS_XPL_OWNCHILD_H
#define TESTS_XPL_OWNCHILD_H

#include <cstdint>
#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/TestHeaders.h"
#include "xpl/Xproc.h"

// This test program as a child that the library starts.

inline std::string ownPath() { return builtProgram("xpl_test.exe"); }

// A path for the child, whose start-up keeps doubled backslashes as they are.
inline std::string slashed(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

// The command line that runs one of the child's subprocesses.
inline std::vector<std::string> ownCall(const std::string& subprocess,
                                        const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> call{ownPath(), "--subprocess", subprocess};
    call.insert(call.end(), arguments.begin(), arguments.end());
    return call;
}

inline XprocHandle startOwn(const std::string& subprocess,
                            const std::vector<std::string>& arguments = {}) {
    XprocHandle child = nullptr;
    EXPECT_EQ(xprocCreate(&child, ownCall(subprocess, arguments)), 0);
    return child;
}

// Waits for the end of a child.
inline std::uint32_t exitCodeOf(XprocHandle child) {
    std::uint32_t status = 0;
    EXPECT_EQ(xprocWait(child, &status), 0);
    return status;
}

// Arguments that are hard to quote, and their quoted form.
struct QuotingCase {
    const char* name;
    std::string argument;
    std::string quoted;
};

inline const QuotingCase kQuotingCases[] = {
    {"empty", "", R"("")"},
    {"plain", "Nougat64", R"("Nougat64")"},
    {"blanks", "a b", R"("a b")"},
    {"quotes", R"(say "hi")", R"("say \"hi\"")"},
    {"backslash", R"(C:\x)", R"("C:\\x")"},
    {"backslashBeforeQuote", R"(a\"b)", R"("a\\\"b")"},
    {"trailingBackslash", R"(C:\dir\)", R"("C:\\dir\\")"},
    {"onlyBackslashes", R"(\\)", R"("\\\\")"},
    {"onlyQuotes", R"("")", R"("\"\"")"},
    {"tab", "a\tb", "\"a\tb\""},
    {"newline", "a\nb", "\"a\nb\""},
    {"nonAscii", "é日", "\"é日\""},
    {"nonBmp", "\xF0\x9F\x8E\xAE", "\"\xF0\x9F\x8E\xAE\""},
};

#endif
