#ifndef TESTS_XPL_QUOTINGCASES_H
#define TESTS_XPL_QUOTINGCASES_H

#include <string>

// Arguments that are hard to quote, and how they look then.
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
