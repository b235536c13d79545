// The parts of the C++ headers that work without the library, compared with the library's code.
#include <bridge/conf_check.hpp>
#include <bridge/configuration_file.hpp>
#include <bridge/json.hpp>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "conf/ConfCatalogue.h"
#include "conf/ConfNumber.h"
#include "utl/UtlImages.h"

namespace {

using namespace bridge::detail;
using namespace std::string_view_literals;

void expectTheLibrarysAnswer(std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
        std::int32_t number = 0;
        EXPECT_EQ(isReadableI32(text), confParseI32(text, number)) << "\"" << text << "\"";
    }
}

TEST(HeadersTest, ReadableNumbersAreThoseThatTheLibraryReads) {
    expectTheLibrarysAnswer({"", "0", "1", "-1", "+1", "00", "-0", "99999999999", "-99999999999"});
    expectTheLibrarysAnswer({"+-1", "--1", "-", "+", "+ 1"});
    expectTheLibrarysAnswer({" ", " 12", "\t\n\v\f\r7", "1 ", "0 ", " 0"});
    expectTheLibrarysAnswer({"12abc", "0abc", "abc", "0x10", "99999999999abc", "1.5", "0.5"});
    expectTheLibrarysAnswer({"\0001"sv});
}

TEST(HeadersTest, TheKeysAreTheLibrarys) {
    const ConfCatalogue catalogue = confProductCatalogue();
    const std::map<ConfType, bridge::KeyType> types = {
        {ConfType::Bool, bridge::KeyType::Bool},
        {ConfType::I32, bridge::KeyType::I32},
        {ConfType::I64, bridge::KeyType::I64},
        {ConfType::String, bridge::KeyType::String},
        {ConfType::MultiString, bridge::KeyType::MultiString}};
    const auto compare = [&types](const ConfSchema& schema, const auto& properties) {
        ASSERT_EQ(static_cast<std::size_t>(std::distance(schema.begin(), schema.end())),
                  std::size(properties));
        const auto* mine = std::begin(properties);
        for (const auto& [name, property] : schema) {
            EXPECT_EQ(mine->name, name);
            EXPECT_EQ(mine->type, types.at(property.type)) << name;
            EXPECT_EQ(mine->defaultValue, property.defaultValue) << name;
            ++mine;
        }
    };
    compare(catalogue.globals(), kGlobalProperties);
    compare(catalogue.instances(), kInstanceProperties);
}

TEST(HeadersTest, TheImagesAreTheLibrarys) {
    EXPECT_EQ(std::size(kImages), 2u);
    for (const std::string_view image : kImages) {
        EXPECT_NE(utlFindImageTrait(image), nullptr) << image;
    }
}

TEST(HeadersTest, AFileHasTheValuesBeforeItsFirstBadLineAndTheInstancesOfAll) {
    const FileContent content = contentOf(
        "vtr.locale=\"fr\"\n"
        "vtr.locale=\"de\"\n"
        "vtr.country=\n"
        "vtr.guid=\"a=b\"\n"
        "vtr.instance.A.dpi=\"1\"\n"
        "vtr.unknown=\"1\"\n"
        "vtr.instance.B.dpi=\"2\"\n"
        "vtr.instance.C\n");
    EXPECT_EQ(content.values, (decltype(content.values){{"vtr.country", ""},
                                                        {"vtr.guid", "a=b"},
                                                        {"vtr.instance.A.dpi", "1"},
                                                        {"vtr.locale", "de"}}));
    EXPECT_EQ(content.instances, (Names{"A", "B"}));
}

TEST(HeadersTest, ALineThatTheLibraryRefusesEndsTheValues) {
    const std::string key = "vtr.locale=\"";
    const auto ofLength = [&key](std::size_t length) {
        return key + std::string(length - key.size() - 1, 'x') + "\"\nvtr.country=\"fr\"\n";
    };
    EXPECT_EQ(contentOf(ofLength(4096)).values.size(), 2u);
    EXPECT_EQ(contentOf(ofLength(4097)).values.size(), 0u);
    EXPECT_EQ(contentOf("\xEF\xBB\xBFvtr.locale=\"fr\"\n").values.size(), 0u);
}

TEST(HeadersTest, ACarriageReturnAtTheEndOfALineKeepsTheQuote) {
    EXPECT_EQ(contentOf("vtr.locale=\"fr\"\r\n").values.at("vtr.locale"), "fr\"");
}

TEST(HeadersTest, TheEditDistanceCountsLetters) {
    EXPECT_EQ(editDistance("", ""), 0u);
    EXPECT_EQ(editDistance("locale", "locale"), 0u);
    EXPECT_EQ(editDistance("locael", "locale"), 2u);
    EXPECT_EQ(editDistance("", "abc"), 3u);
    EXPECT_EQ(editDistance("abc", ""), 3u);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3u);
}

TEST(HeadersTest, ALongNameMayDifferInOneLetterMore) {
    const auto nearest = [](std::string_view wanted, const std::string& candidate) {
        Nearest one(wanted, wanted.size());
        one.look(candidate);
        return one.question();
    };
    EXPECT_EQ(nearest("1234567", "12345"), "; did you mean \"12345\"?");
    EXPECT_EQ(nearest("1234567", "1234"), "");
    EXPECT_EQ(nearest("12345678", "12345"), "; did you mean \"12345\"?");
    EXPECT_EQ(nearest("12345678", "1234"), "");
}

TEST(HeadersTest, AListingIsReadWithEveryEscape) {
    const auto objects = JsonReader(
                             "[ {\"a\": \"\\\"\\\\\\/\\b\\f\\n\\r\\t\", \"b\" : -12},\n"
                             "{\"c\":\"\\u0041\\u00e9\\u20ac\\ud83d\\ude00 日\"},{} ]")
                             .objects();
    ASSERT_EQ(objects.size(), 3u);
    EXPECT_EQ(objects[0], (JsonObject{{"a", "\"\\/\b\f\n\r\t"}, {"b", "-12"}}));
    EXPECT_EQ(objects[1], (JsonObject{{"c", "Aé€😀 日"}}));
    EXPECT_TRUE(objects[2].empty());
    EXPECT_TRUE(JsonReader("[]\n").objects().empty());
}

TEST(HeadersTest, MalformedListingsAreRefused) {
    for (const std::string_view text :
         {""sv, "["sv, "{}"sv, "[{]"sv, "[{\"a\"}]"sv, "[{\"a\":}]"sv, "[{\"a\":\"}]"sv,
          "[{\"a\":\"\\x\"}]"sv, "[{\"a\":1 \"b\":2}]"sv, "[{\"a\":[]}]"sv}) {
        EXPECT_THROW(JsonReader(text).objects(), std::runtime_error) << text;
    }
}

}  // namespace
