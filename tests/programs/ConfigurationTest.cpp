#include "Configuration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

#include "ConfExpectation.h"

namespace {

KeyState stateOf(std::string_view content, std::string_view key) {
    return Configuration(content).find(key).value().state;
}

}  // namespace

TEST(Configuration, FindsStoredValuesAndDefaults) {
    const Configuration configuration("vtr.locale=\"en\"\nvtr.instance.A.dpi=\"320\"\n");
    EXPECT_EQ(configuration.find("vtr.locale")->text, "en");
    EXPECT_EQ(configuration.find("vtr.log_levels")->text, "*:I");
    EXPECT_EQ(configuration.find("vtr.instance.A.dpi")->text, "320");
    EXPECT_EQ(configuration.find("vtr.instance.A.max_fps")->text, "60");
    EXPECT_EQ(configuration.instances(), std::set<std::string>{"A"});
}

TEST(Configuration, FindsNothingForUnknownKeys) {
    const Configuration configuration("vtr.instance.A.dpi=\"320\"\n");
    for (const char* key : {"", "locale", "vtr.nothing", "vtr.instance.A.nothing",
                            "vtr.instance.B.dpi", "vtr.instance.A", "vtr.dpi"}) {
        EXPECT_FALSE(configuration.find(key)) << key;
    }
    EXPECT_EQ(configuration.typeOf("vtr.instance.B.dpi"), ConfType::I32);
    EXPECT_FALSE(configuration.typeOf("vtr.nothing"));
}

TEST(Configuration, FourBoolsAreUnsetUntilTheFileHasThem) {
    int unset = 0;
    for (const KeyInfo& info : Configuration("").list()) unset += info.state == KeyState::Unset;
    EXPECT_EQ(unset, 4);
    EXPECT_EQ(stateOf("", "vtr.feature.macros"), KeyState::Unset);
    EXPECT_EQ(stateOf("vtr.feature.macros=\"1\"\n", "vtr.feature.macros"), KeyState::Value);
    EXPECT_EQ(stateOf("vtr.feature.macros=\"\"\n", "vtr.feature.macros"), KeyState::Unset);
}

TEST(Configuration, ValuesThatTheLibraryCannotReadAreInvalid) {
    EXPECT_EQ(stateOf("vtr.feature.rooting=\"yes\"\n", "vtr.feature.rooting"), KeyState::Invalid);
    EXPECT_EQ(stateOf("vtr.next_vm_id=\"abc\"\n", "vtr.next_vm_id"), KeyState::Invalid);
    EXPECT_EQ(stateOf("vtr.next_vm_id=\"12abc\"\n", "vtr.next_vm_id"), KeyState::Value);
    EXPECT_EQ(stateOf("vtr.next_vm_id=\"\"\n", "vtr.next_vm_id"), KeyState::Value);
}

TEST(Configuration, ReadingStopsWhereTheLibraryStops) {
    for (const char* bad : {"\n", "nonsense\n", "vtr.nothing=\"1\"\n", "vtr.guid=\n"}) {
        const Configuration configuration("vtr.locale=\"a\"\n" + std::string(bad) +
                                          "vtr.locale=\"b\"\n");
        EXPECT_EQ(configuration.find("vtr.locale")->text, "a") << bad;
    }
}

TEST(Configuration, ListsEveryKeyInByteOrder) {
    const auto all = Configuration("vtr.instance.A.dpi=\"1\"\nvtr.instance.A-.dpi=\"1\"\n").list();
    EXPECT_EQ(all.size(), globalCount() + 2 * instanceCount());
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end(),
                               [](const KeyInfo& a, const KeyInfo& b) { return a.key < b.key; }));
}

TEST(StoredForm, BoolsHaveFourSpellings) {
    EXPECT_EQ(storedForm(ConfType::Bool, "true"), "1");
    EXPECT_EQ(storedForm(ConfType::Bool, "1"), "1");
    EXPECT_EQ(storedForm(ConfType::Bool, "false"), "0");
    EXPECT_EQ(storedForm(ConfType::Bool, "0"), "0");
    for (const char* text : {"", "yes", "TRUE", "2", " 1"}) {
        EXPECT_FALSE(storedForm(ConfType::Bool, text)) << text;
    }
}

TEST(StoredForm, NumbersMustBeWholeAndInRange) {
    EXPECT_EQ(storedForm(ConfType::I32, "-2147483648"), "-2147483648");
    for (const char* text : {"", "12abc", "2147483648", " 5", "+5", "05", "1.5"}) {
        EXPECT_FALSE(storedForm(ConfType::I32, text)) << text;
    }
}

TEST(StoredForm, LongNumbersHaveTheirOwnRange) {
    EXPECT_EQ(storedForm(ConfType::I64, "-9223372036854775808"), "-9223372036854775808");
    EXPECT_FALSE(storedForm(ConfType::I64, "9223372036854775808"));
}

TEST(StoredForm, TextsStayAsTheyAre) {
    for (const char* text : {"", "é \"x\"", "a,b", " "}) {
        EXPECT_EQ(storedForm(ConfType::String, text), text);
        EXPECT_EQ(storedForm(ConfType::MultiString, text), text);
    }
}
