#include "conf/ConfText.h"
#include "support/Lines.h"
#include "support/Rows.h"
#include "support/TestHeaders.h"

namespace {

// "key>value" for each entry, then how the reading ended.
Lines readAll(std::string_view content) {
    Lines result;
    ConfTextReader reader(content);
    for (ConfEntry entry;;) {
        switch (reader.next(entry)) {
            case ConfRead::End:
                result.push_back("end");
                return result;
            case ConfRead::Malformed:
                result.push_back("malformed " + std::string(entry.line));
                return result;
            case ConfRead::Entry:
                result.push_back(std::string(entry.key) + ">" + std::string(entry.value));
        }
    }
}

struct Reading {
    const char* name;
    std::string_view content;
    Lines result;
};

const Reading kReadings[] = {
    {"EntriesComeInOrder", "a=\"1\"\nb=\"2\"\n", {"a>1", "b>2", "end"}},
    {"TheLastLineNeedsNoLineFeed", "a=\"1\"", {"a>1", "end"}},
    {"AnEmptyTextHasNoEntries", "", {"end"}},
    {"ABlankLineIsMalformed", "a=\"1\"\n\nb=\"2\"\n", {"a>1", "malformed "}},
    {"ABlankFirstLineIsMalformed", "\n", {"malformed "}},
    {"ALineWithoutEqualsIsMalformed", "# comment\n", {"malformed # comment"}},
    {"OnlyTheFirstEqualsSeparates", "a=\"x=y\"\n", {"a>x=y", "end"}},
    {"QuotesInsideAValueNeedNoEscape", "a=\"say \"hi\"\"\n", {"a>say \"hi\"", "end"}},
    {"TheDroppedCharactersNeedNotBeQuotes", "a=[1]\n", {"a>1", "end"}},
    {"ACarriageReturnIsDroppedInsteadOfTheClosingQuote",
     "a=\"1\"\r\nb=\"\"\r\n",
     {"a>1\"", "b>\"", "end"}},
    {"AnEmptyValue", "a=\"\"\n", {"a>", "end"}},
    {"AValueOfOneQuoteIsEmpty", "a=\"\n", {"a>", "end"}},
    {"AnEmptyKey", "=\"x\"\n", {">x", "end"}},
    {"AValueEndsAtItsFirstNul", {"a=\"1\0\x32\"\nb=\"3\"\n", 14}, {"a>1", "b>3", "end"}},
};

CASE_PER_ROW(ConfTextReading, ::testing::Test, kReadings);

}  // namespace

TEST_P(ConfTextReading, Yields) { EXPECT_EQ(readAll(GetParam().content), GetParam().result); }

TEST(ConfText, ALineThatEndsAtItsEqualsThrows) {
    EXPECT_THROW(readAll("a=\n"), std::out_of_range);
    EXPECT_THROW(readAll("b=\"1\"\na="), std::out_of_range);
}

TEST(ConfText, ALineMayHave4096Bytes) {
    const std::string line = "a=\"" + std::string(4092, 'x') + "\"";
    ASSERT_EQ(line.size(), 4096u);
    EXPECT_EQ(readAll(line), (Lines{"a>" + std::string(4092, 'x'), "end"}));
    EXPECT_EQ(readAll(line + "x"), Lines{"malformed " + line + "x"});
}

TEST(ConfText, ANulAnywhereInALineIsReported) {
    const auto hasNul = [](std::string_view line) {
        ConfTextReader reader(line);
        ConfEntry entry;
        EXPECT_EQ(reader.next(entry), ConfRead::Entry);
        return entry.hasNul;
    };
    for (const std::string_view line :
         {std::string_view("a\0b=\"1\"\n", 8), std::string_view("a=\0\"1\"\n", 7),
          std::string_view("a=\"1\0\"\n", 7), std::string_view("a=\"1\"\0", 6)}) {
        EXPECT_TRUE(hasNul(line)) << line;
    }
    EXPECT_FALSE(hasNul("a=\"1\"\n"));
    EXPECT_FALSE(hasNul({"a=\"1\"\nb=\"\0\"\n", 13})) << "it belongs to the next line";
}

TEST(ConfText, LineLengthsFollowTheBoundedFormatter) {
    EXPECT_EQ(confLineLength("a", "1"), 6);
    EXPECT_EQ(confLineLength("a", std::string(4090, 'x')), 4095);
    EXPECT_EQ(confLineLength("a", std::string(4091, 'x')), 4096);
    EXPECT_EQ(confLineLength("a", std::string(4092, 'x')), -1);
}

TEST(ConfText, LinesOf4096BytesAndMoreAreRefused) {
    EXPECT_EQ(confCheckEntry("a", std::string(4090, 'x')), XERR_SUCCESS);
    EXPECT_EQ(confCheckEntry("a", std::string(4091, 'x')), XERR_2BIG);
    EXPECT_EQ(confCheckEntry("a", std::string(9999, 'x')), XERR_2BIG);
    EXPECT_EQ(confCheckReadEntry("a", std::string(4090, 'x')), XERR_SUCCESS);
    EXPECT_EQ(confCheckReadEntry("a", std::string(4091, 'x')), XERR_2BIG);
}

TEST(ConfText, EntriesThatWouldNotReadBackAreRefused) {
    EXPECT_EQ(confCheckEntry("a", "x\ny"), XERR_INVAL);
    EXPECT_EQ(confCheckEntry("a\nb", "x"), XERR_INVAL);
    EXPECT_EQ(confCheckEntry("a=b", "x"), XERR_INVAL);
    EXPECT_EQ(confCheckEntry({"a\0b", 3}, "x"), XERR_INVAL);
    EXPECT_EQ(confCheckEntry("a", {"x\0\n", 3}), XERR_SUCCESS) << "nothing after a NUL is written";
    EXPECT_EQ(confCheckEntry("a", "x=\"y\"\r\t"), XERR_SUCCESS);
}

TEST(ConfText, WrittenLinesReadBack) {
    char room[100] = "a";
    char* end = confEndLine(room + 1, "say \"hi\" = é日");
    *end = 'b';
    end = confEndLine(end + 1, "");
    *end = 'c';
    end = confEndLine(end + 1, {"x\0y", 3});
    const std::string text(room, end);
    EXPECT_EQ(text, "a=\"say \"hi\" = é日\"\nb=\"\"\nc=\"x\"\n");
    EXPECT_EQ(readAll(text), (Lines{"a>say \"hi\" = é日", "b>", "c>x", "end"}));
}
