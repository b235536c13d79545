#include "shared/Table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "CallTimes.h"
#include "shared/DisplayWidth.h"
#include "shared/DisplayWidthTable.h"

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

TEST(DisplayWidth, CoversEveryScript) {
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

TEST(Table, LinesHaveNoTrailingSpaces) {
    EXPECT_EQ(formatTable({{"A", "B"}, {"long text", ""}}), "A          B\nlong text\n");
    EXPECT_EQ(formatTable({}), "");
}

TEST(Table, WideCharactersAndCombiningMarksKeepTheColumnsInLine) {
    const std::string text = formatTable({{"NAME", "IMAGE", "CPU"},
                                          {"日本のゲーム", "Nougat64", "4"},
                                          {"Cafe\xCC\x81 ｶﾞ", "Nougat32", "12"},
                                          {"\xF0\x9F\x8E\xAE Spiele", "Nougat64_1", "1"}});
    std::vector<std::size_t> columns;
    for (std::size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        const std::string line = text.substr(at, end - at);
        const std::size_t image = std::min(line.find("Nougat"), line.find("IMAGE"));
        columns.push_back(displayWidth(line.substr(0, image)));
        columns.push_back(displayWidth(line.substr(0, line.rfind(' ') + 1)));
    }
    EXPECT_EQ(columns, (std::vector<std::size_t>{14, 26, 14, 26, 14, 26, 14, 26}));
}

TEST(Table, ControlCharactersDoNotReachTheTerminal) {
    EXPECT_EQ(formatTable({{"A"}, {"x\ny\x1b[1m\x7F\xC2\x9Bz"}}),
              "A\nx\xEF\xBF\xBDy\xEF\xBF\xBD[1m\xEF\xBF\xBD\xEF\xBF\xBDz\n");
}

TEST(Table, TheHeadingIsBoldOnATerminal) {
    const std::vector<TableRow> rows{{"A", "B"}, {"long", "1"}};
    EXPECT_EQ(formatTable(rows, TextStyle(/*isTerminal=*/true, nullptr)),
              "\x1b[1mA     B\x1b[0m\nlong  1\n");
    EXPECT_EQ(formatTable(rows, TextStyle(/*isTerminal=*/true, "")),
              "\x1b[1mA     B\x1b[0m\nlong  1\n")
        << "an empty NO_COLOR asks for nothing";
}

TEST(Table, WithoutATerminalOrWithNoColorThereAreNoStyles) {
    const std::vector<TableRow> rows{{"A", "B"}, {"long", "1"}};
    for (const TextStyle& style :
         {TextStyle(), TextStyle(/*isTerminal=*/false, nullptr),
          TextStyle(/*isTerminal=*/true, "1"), TextStyle(/*isTerminal=*/false, "1")}) {
        EXPECT_EQ(formatTable(rows, style), "A     B\nlong  1\n");
        EXPECT_EQ(style.error("e"), "e");
        EXPECT_EQ(style.help("Options:\n  --x\n"), "Options:\n  --x\n");
    }
}

TEST(TextStyle, HeadingsOfTheHelpEndWithAColon) {
    const TextStyle style(/*isTerminal=*/true, nullptr);
    EXPECT_EQ(style.help("Usage: x\n\nOptions:\n  a:\nend"),
              "Usage: x\n\n\x1b[1mOptions:\x1b[0m\n  a:\nend");
    EXPECT_EQ(style.error("bad"), "\x1b[31mbad\x1b[0m");
}

TEST(CallTimes, TimesHaveADecimalPointInEveryLocale) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    char half[8] = "";
    if (std::setlocale(LC_NUMERIC, "de-DE") != nullptr) {
        std::snprintf(half, sizeof half, "%.1f", 0.5);
    }
    CallTimes times;
    times.add("a", std::chrono::microseconds(12'034));
    const std::vector<std::string> lines = times.lines();
    std::setlocale(LC_NUMERIC, before.c_str());
    if (std::string(half) != "0,5") GTEST_SKIP() << "needs a locale with a decimal comma";
    EXPECT_EQ(lines, std::vector<std::string>{"a: 1 call, 12.034 ms"});
}

TEST(CallTimes, AddsUpInTheOrderOfTheFirstCalls) {
    CallTimes times;
    times.add("b", std::chrono::microseconds(1500));
    times.add("a", std::chrono::nanoseconds(400));
    times.add("b", std::chrono::milliseconds(2));
    EXPECT_EQ(times.lines(),
              (std::vector<std::string>{"b: 2 calls, 3.500 ms", "a: 1 call, 0.000 ms"}));
}
