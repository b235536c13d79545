#include "shared/JsonValue.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

TEST(JsonValue, EveryTypeHasItsForm) {
    EXPECT_EQ(JsonValue(nullptr).inOneLine(), "null");
    EXPECT_EQ(JsonValue(true).inOneLine(), "true");
    EXPECT_EQ(JsonValue(-3).inOneLine(), "-3");
    EXPECT_EQ(JsonValue(9007199254740993LL).inOneLine(), "9007199254740993");
    EXPECT_EQ(JsonValue(0.5).inOneLine(), "0.5");
    EXPECT_EQ(JsonValue("a\"\n").inOneLine(), "\"a\\\"\\n\"");
    EXPECT_EQ(JsonValue(std::string("日本")).inOneLine(), "\"日本\"");
    EXPECT_EQ(JsonValue(JsonArray()).inOneLine(), "[]");
    EXPECT_EQ(JsonValue(JsonObject()).inOneLine(), "{}");
}

TEST(JsonValue, MembersKeepTheirOrder) {
    const JsonObject object{{"b", 1}, {"a", JsonArray{"x", 2}}};
    EXPECT_EQ(JsonValue(object).inOneLine(), R"({"b":1,"a":["x",2]})");
}

TEST(JsonValue, LinesAreIndented) {
    const JsonObject inner{{"b", nullptr}};
    EXPECT_EQ(JsonValue(JsonObject{{"a", inner}}).indented(),
              "{\n    \"a\": {\n        \"b\": null\n    }\n}");
}

TEST(JsonValue, BytesThatAreNotUtf8AreReplaced) {
    EXPECT_EQ(JsonValue("a\xFF").inOneLine(), "\"a\xEF\xBF\xBD\"");
    EXPECT_EQ(JsonValue("a\xFF").indented(), "\"a\xEF\xBF\xBD\"");
}

TEST(JsonValue, ANumberThatIsNotFiniteIsNull) {
    EXPECT_EQ(JsonValue(std::numeric_limits<double>::quiet_NaN()).inOneLine(), "null");
}

TEST(JsonValue, ACopyIsTheSameValue) {
    const JsonValue value = JsonObject{{"a", 1}};
    const JsonArray both{value, value};
    EXPECT_EQ(JsonValue(both).inOneLine(), R"([{"a":1},{"a":1}])");
}
