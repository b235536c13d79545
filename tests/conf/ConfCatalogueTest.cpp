#include "ConfExpectation.h"
#include "conf/ConfCatalogue.h"
#include "support/TestHeaders.h"

namespace {

// In the order of their numbers.
constexpr const char* kTypeNames[] = {"none", "i32", "i64", "multi-string", "bool", "string"};

void expectRows(ConfCatalogueRows rows, const std::string& scope) {
    std::vector<ListedProperty> listed;
    for (const ListedProperty& row : listedProperties()) {
        if (row.scope == scope) listed.push_back(row);
    }
    ASSERT_EQ(rows.count, listed.size());
    std::size_t i = 0;
    for (const ConfCatalogueRow& row : rows) {
        const ListedProperty& expected = listed[i++];
        EXPECT_EQ(row.name, expected.name);
        EXPECT_EQ(kTypeNames[static_cast<std::size_t>(row.type)], expected.type) << row.name;
        EXPECT_EQ(row.defaultValue, expected.defaultValue) << row.name;
        EXPECT_EQ(row.excludeFromAllConfigs, expected.excluded) << row.name;
    }
}

}  // namespace

TEST(ConfCatalogue, GlobalRowsEqualTheListingFieldByField) {
    expectRows(confGlobalRows(), "global");
}

TEST(ConfCatalogue, InstanceRowsEqualTheListingFieldByField) {
    expectRows(confInstanceRows(), "instance");
}

TEST(ConfCatalogue, RegistersEveryRow) {
    ASSERT_GT(globalCount(), 0u);
    ASSERT_GT(instanceCount(), 0u);
    EXPECT_EQ(confGlobalRows().count, globalCount() + 1) << "shortcut.shake is registered twice";
    EXPECT_EQ(confInstanceRows().count, instanceCount());
    const ConfCatalogue catalogue = confProductCatalogue();
    EXPECT_EQ(catalogue.globals().size(), globalCount());
    EXPECT_EQ(catalogue.instances().size(), instanceCount());
    EXPECT_EQ(catalogue.findGlobal("shortcut.shake")->defaultValue, "Ctrl + Shift + 3");
}

TEST(ConfCatalogue, NoPropertyIsDeprecated) {
    const ConfCatalogue catalogue = confProductCatalogue();
    for (const auto& entry : catalogue.globals()) EXPECT_FALSE(entry.second.deprecated);
    for (const auto& entry : catalogue.instances()) EXPECT_FALSE(entry.second.deprecated);
}

TEST(ConfCatalogue, TheFlagSearchesInstancePropertiesFirst) {
    const ConfCatalogue catalogue = confProductCatalogue();
    EXPECT_EQ(confGetPropType(catalogue, "adb_port", true), ConfType::I32);
    EXPECT_EQ(confGetPropType(catalogue, "adb_port", false), ConfType::None);
    EXPECT_EQ(confGetPropType(catalogue, "log_levels", true), ConfType::String);
    EXPECT_EQ(confGetPropType(catalogue, "log_levels", false), ConfType::String);
    EXPECT_EQ(confGetPropType(catalogue, "nothing", true), ConfType::None);
}

TEST(ConfCatalogue, ASecondRegistrationReplacesTheFirst) {
    ConfCatalogue catalogue;
    catalogue.registerGlobal("a", {ConfType::I32, "1"});
    catalogue.registerGlobal("a", {ConfType::String, "x", true, true});
    ASSERT_EQ(catalogue.globals().size(), 1u);
    EXPECT_EQ(catalogue.findGlobal("a")->type, ConfType::String);
    EXPECT_EQ(catalogue.findGlobal("a")->defaultValue, "x");
    EXPECT_TRUE(catalogue.findGlobal("a")->excludeFromAllConfigs);
    EXPECT_TRUE(catalogue.findGlobal("a")->deprecated);
    EXPECT_EQ(catalogue.findInstance("a"), nullptr);
}
