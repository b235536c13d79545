#include "conf/ConfNumber.h"
#include "support/TestHeaders.h"

namespace {

std::optional<std::int32_t> parse32(std::string_view text) {
    std::int32_t number = 77;
    return confParseI32(text, number) ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> parse64(std::string_view text) {
    std::int64_t number = 77;
    return confParseI64(text, number) ? std::optional(number) : std::nullopt;
}

}  // namespace

TEST(ConfNumber, ReadsDecimalNumbers) {
    EXPECT_EQ(parse32("0"), 0);
    EXPECT_EQ(parse32("42"), 42);
    EXPECT_EQ(parse32("-1"), -1);
    EXPECT_EQ(parse32("+7"), 7);
    EXPECT_EQ(parse32("007"), 7);
    EXPECT_EQ(parse64("9000000000"), 9'000'000'000);
}

TEST(ConfNumber, AnEmptyTextIsZero) {
    EXPECT_EQ(parse32(""), 0);
    EXPECT_EQ(parse64(""), 0);
}

TEST(ConfNumber, ReadsNothingAfterTheText) {
    EXPECT_EQ(parse32(std::string_view("123456").substr(0, 3)), 123);
    EXPECT_EQ(parse64(std::string_view("-123456").substr(0, 3)), -12);
}

TEST(ConfNumber, StopsAtTheFirstOtherCharacter) {
    EXPECT_EQ(parse32("12abc"), 12);
    EXPECT_EQ(parse32("1.9"), 1);
    EXPECT_EQ(parse32("5 "), 5);
}

TEST(ConfNumber, LeadingWhiteSpaceIsSkipped) {
    EXPECT_EQ(parse32(" \t\n\v\f\r8"), 8);
    EXPECT_EQ(parse32(" 0"), 0);
}

TEST(ConfNumber, ZeroThatStopsEarlyIsRefused) {
    for (const char* text : {"abc", " ", "-", "+", "+-5", "-+5", "0x10", "0 ", "--1",
                             "\xC2\xA0"
                             "5"}) {
        EXPECT_EQ(parse32(text), std::nullopt) << text;
        EXPECT_EQ(parse64(text), std::nullopt) << text;
    }
}

TEST(ConfNumber, NumbersOutOfRangeSaturate) {
    EXPECT_EQ(parse32("2147483647"), INT32_MAX);
    EXPECT_EQ(parse32("2147483648"), INT32_MAX);
    EXPECT_EQ(parse32("-2147483648"), INT32_MIN);
    EXPECT_EQ(parse32("-99999999999999999999"), INT32_MIN);
    EXPECT_EQ(parse64("9223372036854775808"), INT64_MAX);
    EXPECT_EQ(parse64("-9223372036854775809"), INT64_MIN);
}

TEST(ConfNumber, LongNumbersTakeASignToo) {
    EXPECT_EQ(parse64("+7"), 7);
    EXPECT_EQ(parse64("-7"), -7);
}
