#include "Table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr const char* kOne =
    "# A comment.\n"
    "[log]\n"
    "decides = Whether lines stay whole\n"
    "page = docs/reference/limits.md\n"
    "sentence = lines of = several\n"
    "run = tests/xpl_test.exe  --gtest_filter=A.*\n"
    "needs = windows prompt\n"
    "tool = dotnet\n"
    "set = A=1 B={kit}\\x\n"
    "limit = 20\n";

}  // namespace

TEST(KitTable, ACheckHasItsMembers) {
    const Table table = readTable(kOne);
    ASSERT_EQ(table.fault, "");
    ASSERT_EQ(table.checks.size(), 1u);
    const Check& check = table.checks[0];
    EXPECT_EQ(check.id, "log");
    EXPECT_EQ(check.decides, "Whether lines stay whole");
    EXPECT_EQ(check.page, "docs/reference/limits.md");
    EXPECT_EQ(check.sentence, "lines of = several");
    EXPECT_EQ(check.command,
              (std::vector<std::string>{"tests/xpl_test.exe", "--gtest_filter=A.*"}));
    EXPECT_TRUE(check.has("windows"));
    EXPECT_TRUE(check.has("prompt"));
    EXPECT_FALSE(check.has("elevated"));
    EXPECT_EQ(check.tool, "dotnet");
    EXPECT_EQ(check.variables, (std::vector<std::string>{"A=1", "B={kit}\\x"}));
    EXPECT_EQ(check.limit, 20);
}

TEST(KitTable, WindowsLineEndsAndBlankLinesAreRead) {
    const Table table =
        readTable("\r\n[a]\r\ndecides = d\r\n\r\nrun = x y\r\n[b]\r\ndecides = e\r\nrun = z\r\n");
    ASSERT_EQ(table.fault, "");
    ASSERT_EQ(table.checks.size(), 2u);
    EXPECT_EQ(table.checks[0].command, (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(table.checks[1].decides, "e");
}

TEST(KitTable, AFaultIsNamed) {
    const std::string start = "[a]\ndecides = d\nrun = x\n";
    EXPECT_EQ(readTable("").fault, "no checks");
    EXPECT_EQ(readTable("decides = d\n").fault, "line 1: decides = d");
    EXPECT_EQ(readTable(start + "colour = red\n").fault, "line 4: colour = red");
    EXPECT_EQ(readTable(start + "needs = luck\n").fault, "line 4: needs = luck");
    EXPECT_EQ(readTable(start + "limit = soon\n").fault, "line 4: limit = soon");
    EXPECT_EQ(readTable(start + "words\n").fault, "line 4: words");
    EXPECT_EQ(readTable("[]\n").fault, "line 1: []");
    EXPECT_EQ(readTable(start + start).fault, "a twice");
    EXPECT_EQ(readTable("[a]\nrun = x\n").fault, "a decides nothing");
    EXPECT_EQ(readTable("[a]\ndecides = d\n").fault, "a runs nothing");
    EXPECT_EQ(readTable(start + "page = p\n").fault, "a has half a claim");
}
