#include "Table.h"

#include <gtest/gtest.h>

#include "DisplayWidth.h"
#include "DisplayWidthTable.h"

TEST(DisplayWidth, CountsColumns) {
    EXPECT_EQ(displayWidth(""), 0u);
    EXPECT_EQ(displayWidth("Nougat64"), 8u);
    EXPECT_EQ(displayWidth("é"), 1u);
    EXPECT_EQ(displayWidth("e\xCC\x81"), 1u) << "a combining mark";
    EXPECT_EQ(displayWidth("日本"), 4u);
    EXPECT_EQ(displayWidth("\xF0\x9F\x8E\xAE"), 2u) << "a pictograph";
    EXPECT_EQ(displayWidth("ｱ"), 1u) << "half-width";
    EXPECT_EQ(displayWidth("Ａ"), 2u) << "full-width";
    EXPECT_EQ(displayWidth("\xFF\xFE"), 2u) << "bytes that are not UTF-8";
}

TEST(DisplayWidth, KnowsEveryScript) {
    EXPECT_EQ(displayWidth("\xD7\xA9\xD6\xBF"), 1u) << "Hebrew with a point";
    EXPECT_EQ(displayWidth("\xE0\xA4\x95\xE0\xA4\x82"), 1u) << "Devanagari with anusvara";
    EXPECT_EQ(displayWidth("\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB"), 2u) << "Hangul in parts";
    EXPECT_EQ(displayWidth("\xF0\x9F\x8C\xA1"), 1u) << "a narrow symbol among pictographs";
    EXPECT_EQ(displayWidth("\xC2\xAD"), 1u) << "the soft hyphen";
}

TEST(DisplayWidth, TheTablesAreInAscendingOrder) {
    const auto expectAscending = [](const auto& table) {
        std::uint32_t end = 0;
        for (const WidthRange& range : table) {
            EXPECT_LT(end, range.first);
            EXPECT_LE(range.first, range.last);
            end = range.last;
        }
    };
    expectAscending(kZeroWidth);
    expectAscending(kDoubleWidth);
}

TEST(Table, AlignsColumnsByWidth) {
    EXPECT_EQ(formatTable({{"NAME", "CPU"}, {"日本", "4"}, {"e\xCC\x81", "12"}}),
              "NAME  CPU\n日本  4\ne\xCC\x81     12\n");
}

TEST(Table, LinesHaveNoBlanksAtTheirEnds) {
    EXPECT_EQ(formatTable({{"A", "B"}, {"long text", ""}}), "A          B\nlong text\n");
    EXPECT_EQ(formatTable({}), "");
}
