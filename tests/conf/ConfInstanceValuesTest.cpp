#include "conf/ConfInstanceValues.h"

#include "ConfFixture.h"

namespace {

// An instance's name and the values of the columns; "-" where there is none.
using Rows = std::vector<Lines>;

Rows rowsOf(ConfStore& store, const std::vector<ConfColumn>& columns) {
    const ConfInstanceValues values(store, columns.data(), columns.size());
    Rows rows;
    for (std::size_t i = 0; i < values.size(); ++i) {
        Lines row{std::string(values.name(i))};
        for (std::size_t column = 0; column < columns.size(); ++column) {
            row.emplace_back(values.value(i, column).value_or("-"));
        }
        rows.push_back(row);
    }
    return rows;
}

const std::vector<ConfColumn> kColumns{{"dpi", ConfType::I32}, {"display_name", ConfType::String}};

class ConfInstanceValuesTest : public ConfTest {
 protected:
    void SetUp() override {
        given(
            "vtr.instance.B.dpi=\"160\"\nvtr.instance.A.dpi=\"320\"\n"
            "vtr.instance.A.display_name=\"Ä\"\n");
    }
};

}  // namespace

TEST_F(ConfInstanceValuesTest, InstancesAreInTheOrderOfTheirNamesAndValuesInThatOfTheColumns) {
    EXPECT_EQ(rowsOf(store, kColumns), (Rows{{"A", "320", "Ä"}, {"B", "160", "Vantrel"}}));
}

TEST_F(ConfInstanceValuesTest, WithoutColumnsThereAreTheNames) {
    EXPECT_EQ(rowsOf(store, {}), (Rows{{"A"}, {"B"}}));
}

TEST_F(ConfInstanceValuesTest, APendingValueIsShown) {
    set("vtr.instance.A.display_name", "new");
    EXPECT_EQ(rowsOf(store, kColumns), (Rows{{"A", "320", "new"}, {"B", "160", "Vantrel"}}));
}

TEST_F(ConfInstanceValuesTest, AValueWhoseRemovalIsPendingIsNotShown) {
    ASSERT_EQ(confDeleteInstance(store, "A"), 0);
    set("vtr.instance.A.dpi", 1);
    EXPECT_EQ(rowsOf(store, kColumns), (Rows{{"A", "1", "-"}, {"B", "160", "Vantrel"}}));
}

TEST_F(ConfInstanceValuesTest, AnUnknownPropertyHasNoValue) {
    EXPECT_EQ(rowsOf(store, {{"none", ConfType::I32}}), (Rows{{"A", "-"}, {"B", "-"}}));
}

TEST_F(ConfInstanceValuesTest, APropertyOfAnotherTypeHasNoValue) {
    EXPECT_EQ(rowsOf(store, {{"dpi", ConfType::String}}), (Rows{{"A", "-"}, {"B", "-"}}));
}

TEST_F(ConfInstanceValuesTest, ANameWithADotHasNoValues) {
    confAddInstance(store, "A.b");
    EXPECT_EQ(rowsOf(store, kColumns),
              (Rows{{"A", "320", "Ä"}, {"A.b", "-", "-"}, {"B", "160", "Vantrel"}}));
}

TEST_F(ConfInstanceValuesTest, ADeprecatedPropertyHasAValueOnlyWhereItIsAllowed) {
    ConfCatalogue old;
    old.registerInstance("old", deprecatedText("o"));
    for (const bool isAllowed : {false, true}) {
        ConfStore other(old, confDiskFiles());
        load(other, "vtr.instance.A.old=\"2\"\n", isAllowed);
        EXPECT_EQ(rowsOf(other, {{"old", ConfType::String}}), (Rows{{"A", isAllowed ? "2" : "-"}}));
    }
}
