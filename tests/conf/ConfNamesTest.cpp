#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "conf/ConfNames.h"

TEST(ConfNames, BehavesAsASet) {
    std::mt19937 random(5);
    for (int round = 0; round < 30; ++round) {
        ConfNames names;
        ConfNames::Set model;
        for (int step = 0; step < 400; ++step) {
            const std::string name = "Nougat64_" + std::to_string(random() % 60);
            if (random() % 3 == 0) {
                names.remove(name);
                model.erase(name);
            } else {
                EXPECT_EQ(names.add(name), name);
                model.insert(name);
            }
            ASSERT_EQ(names.all(), model);
            for (int i = 0; i < 60; ++i) {
                const std::string asked = "Nougat64_" + std::to_string(i);
                ASSERT_EQ(names.contains(asked), model.count(asked) == 1) << asked;
            }
        }
    }
}

TEST(ConfNames, ANameIsKeptOnceAndStays) {
    ConfNames names;
    const std::string_view first = names.add("a");
    for (int i = 0; i < 1000; ++i) names.add("b" + std::to_string(i));
    EXPECT_EQ(names.add("a").data(), first.data());
    EXPECT_EQ(first, "a");
    EXPECT_EQ(names.all().size(), 1001u);
}

TEST(ConfNames, TheEmptyNameIsAName) {
    ConfNames names;
    EXPECT_FALSE(names.contains(""));
    names.add("");
    EXPECT_TRUE(names.contains(""));
    names.remove("");
    EXPECT_FALSE(names.contains(""));
    EXPECT_TRUE(names.all().empty());
}

TEST(ConfNames, NothingIsThereAfterClearing) {
    ConfNames names;
    names.add("a");
    names.clear();
    EXPECT_FALSE(names.contains("a"));
    EXPECT_TRUE(names.all().empty());
    names.add("b");
    EXPECT_TRUE(names.contains("b"));
}
