#include "Table.h"

#include <gtest/gtest.h>

#include "DisplayWidth.h"

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

TEST(Table, AlignsColumnsByWidth) {
    EXPECT_EQ(formatTable({{"NAME", "CPU"}, {"日本", "4"}, {"e\xCC\x81", "12"}}),
              "NAME  CPU\n日本  4\ne\xCC\x81     12\n");
}

TEST(Table, LinesHaveNoBlanksAtTheirEnds) {
    EXPECT_EQ(formatTable({{"A", "B"}, {"long text", ""}}), "A          B\nlong text\n");
    EXPECT_EQ(formatTable({}), "");
}
