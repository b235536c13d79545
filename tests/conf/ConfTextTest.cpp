#include "conf/ConfText.h"
#include "support/TestHeaders.h"

namespace {

using Read = std::vector<std::string>;

// "key>value" for each entry, then how it ended.
Read readAll(std::string_view content) {
    Read result;
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

}  // namespace

TEST(ConfText, ReadsEntriesInOrder) {
    EXPECT_EQ(readAll("a=\"1\"\nb=\"2\"\n"), (Read{"a>1", "b>2", "end"}));
}

TEST(ConfText, TheLastLineNeedsNoLineFeed) { EXPECT_EQ(readAll("a=\"1\""), (Read{"a>1", "end"})); }

TEST(ConfText, AnEmptyTextHasNoEntries) { EXPECT_EQ(readAll(""), Read{"end"}); }

TEST(ConfText, ABlankLineIsMalformed) {
    EXPECT_EQ(readAll("a=\"1\"\n\nb=\"2\"\n"), (Read{"a>1", "malformed "}));
    EXPECT_EQ(readAll("\n"), Read{"malformed "});
}

TEST(ConfText, ALineWithoutEqualsIsMalformed) {
    EXPECT_EQ(readAll("# comment\n"), Read{"malformed # comment"});
}

TEST(ConfText, OnlyTheFirstEqualsSeparates) {
    EXPECT_EQ(readAll("a=\"x=y\"\n"), (Read{"a>x=y", "end"}));
}

TEST(ConfText, QuotesInsideAValueNeedNoEscape) {
    EXPECT_EQ(readAll("a=\"say \"hi\"\"\n"), (Read{"a>say \"hi\"", "end"}));
}

TEST(ConfText, TheDroppedCharactersNeedNotBeQuotes) {
    EXPECT_EQ(readAll("a=[1]\n"), (Read{"a>1", "end"}));
}

TEST(ConfText, CarriageReturnsAreDroppedInPlaceOfTheClosingQuote) {
    EXPECT_EQ(readAll("a=\"1\"\r\nb=\"\"\r\n"), (Read{"a>1\"", "b>\"", "end"}));
}

TEST(ConfText, ShortestValues) {
    EXPECT_EQ(readAll("a=\"\"\n"), (Read{"a>", "end"}));
    EXPECT_EQ(readAll("a=\"\n"), (Read{"a>", "end"})) << "one character after the sign";
    EXPECT_EQ(readAll("=\"x\"\n"), (Read{">x", "end"}));
}

TEST(ConfText, ALineThatEndsAtItsSignThrows) {
    EXPECT_THROW(readAll("a=\n"), std::out_of_range);
    EXPECT_THROW(readAll("b=\"1\"\na="), std::out_of_range);
}

TEST(ConfText, ALineMayHave4096Bytes) {
    const std::string line = "a=\"" + std::string(4092, 'x') + "\"";
    ASSERT_EQ(line.size(), 4096u);
    EXPECT_EQ(readAll(line), (Read{"a>" + std::string(4092, 'x'), "end"}));
    EXPECT_EQ(readAll(line + "x"), Read{"malformed " + line + "x"});
}

TEST(ConfText, AValueEndsAtItsFirstNul) {
    EXPECT_EQ(readAll({"a=\"1\0"
                       "2\"\nb=\"3\"\n",
                       14}),
              (Read{"a>1", "b>3", "end"}));
}

TEST(ConfText, TellsOfANulAnywhereInALine) {
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
    EXPECT_FALSE(hasNul({"a=\"1\"\nb=\"\0\"\n", 13})) << "the next line's counts for itself";
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
    EXPECT_EQ(confCheckEntry("a", {"x\0\n", 3}), XERR_SUCCESS) << "nothing behind a NUL is written";
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
    EXPECT_EQ(readAll(text), (Read{"a>say \"hi\" = é日", "b>", "c>x", "end"}));
}
