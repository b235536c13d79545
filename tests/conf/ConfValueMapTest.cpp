#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "conf/ConfValueMap.h"

namespace {

using Model = std::map<std::string, std::string>;

std::vector<std::pair<std::string, std::string>> entries(const ConfValueMap& map) {
    std::vector<std::pair<std::string, std::string>> all;
    map.forEach([&all](std::string_view prefix, std::string_view name, const std::string& value) {
        all.emplace_back(std::string(prefix).append(name), value);
    });
    return all;
}

void expectSame(const ConfValueMap& map, const Model& model) {
    const auto all = entries(map);
    EXPECT_EQ(map.size(), model.size());
    EXPECT_EQ(all, (std::vector<std::pair<std::string, std::string>>(model.begin(), model.end())));
}

// Keys around every border of the grouping: instances that are prefixes of each other, characters
// before and after ".", keys without a second ".", global keys on both sides of the instances.
std::string randomKey(std::mt19937& random) {
    static const char* const instances[] = {"A", "A-", "A0", "AB", "", "a", "\xC3\xA9", "Z_1"};
    static const char* const names[] = {"dpi", "cpus", "status.adb_port", "", "z", "\xFF"};
    const auto pick = [&random](const auto& list) { return list[random() % std::size(list)]; };
    switch (random() % 4) {
        case 0:
            return std::string("vtr.") + pick(names);
        case 1:
            return std::string("vtr.instance.") + pick(instances);
        case 2:
            return std::string("vtr.instancf.") + pick(names);
        default:
            return std::string("vtr.instance.") + pick(instances) + "." + pick(names);
    }
}

}  // namespace

TEST(ConfValueMap, BehavesAsAnOrderedMap) {
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        ConfValueMap map;
        Model model;
        for (int step = 0; step < 200; ++step) {
            const std::string key = randomKey(random);
            if (random() % 64 == 0) {
                map.clear();
                model.clear();
            } else if (random() % 3 == 0) {
                map.erase(key);
                model.erase(key);
            } else {
                const std::string value = std::to_string(random() % 100);
                map.assign(key, value);
                model[key] = value;
            }
            const std::string probe = randomKey(random);
            const std::string* found = map.find(probe);
            ASSERT_EQ(found != nullptr, model.count(probe) == 1) << probe;
            if (found != nullptr) ASSERT_EQ(*found, model[probe]);
        }
        expectSame(map, model);
    }
}

// A commit clears what was pending, and the next change is often one of the same instance.
TEST(ConfValueMap, AnInstanceComesBackAfterClearing) {
    ConfValueMap map;
    map.assign("vtr.instance.X.a", "1");
    map.assign("vtr.instance.Y.a", "2");
    map.assign("vtr.guid", "3");
    map.clear();
    EXPECT_TRUE(map.empty());
    expectSame(map, {});
    for (const char* key : {"vtr.instance.X.a", "vtr.instance.Y.a", "vtr.guid"}) {
        EXPECT_EQ(map.find(key), nullptr) << key;
        map.erase(key);
    }
    expectSame(map, {});
    map.assign("vtr.instance.X.a", "4");
    map.assign("vtr.instance.X.b", "5");
    map.assign("vtr.guid", "6");
    ASSERT_NE(map.find("vtr.instance.X.a"), nullptr);
    EXPECT_EQ(*map.find("vtr.instance.X.a"), "4");
    EXPECT_EQ(map.find("vtr.instance.Y.a"), nullptr);
    expectSame(map, {{"vtr.guid", "6"}, {"vtr.instance.X.a", "4"}, {"vtr.instance.X.b", "5"}});
}

TEST(ConfValueMap, AddMissingKeepsWhatIsThere) {
    const ConfDirectory properties{
        {"a", {ConfType::I32, "1"}}, {"b", {ConfType::I32, "2"}}, {"c", {ConfType::I32, "3"}}};
    ConfValueMap map;
    map.assign("vtr.instance.X.b", "own");
    map.assign("vtr.instance.X.z", "own");
    map.addMissing("X", properties);
    map.addMissing("Y", properties);
    expectSame(map, {{"vtr.instance.X.a", "1"},
                     {"vtr.instance.X.b", "own"},
                     {"vtr.instance.X.c", "3"},
                     {"vtr.instance.X.z", "own"},
                     {"vtr.instance.Y.a", "1"},
                     {"vtr.instance.Y.b", "2"},
                     {"vtr.instance.Y.c", "3"}});
}

TEST(ConfValueMap, AddMissingPassesNamesThatTheDirectoryLacks) {
    const ConfDirectory properties{{"b", {ConfType::I32, "1"}}, {"d", {ConfType::I32, "2"}}};
    ConfValueMap map;
    map.assign("vtr.instance.X.a", "own");
    map.assign("vtr.instance.X.c", "own");
    map.assign("vtr.instance.X.c2", "own");
    map.addMissing("X", properties);
    expectSame(map, {{"vtr.instance.X.a", "own"},
                     {"vtr.instance.X.b", "1"},
                     {"vtr.instance.X.c", "own"},
                     {"vtr.instance.X.c2", "own"},
                     {"vtr.instance.X.d", "2"}});
}

TEST(ConfValueMap, AssignAllTakesEveryEntryOfTheOther) {
    ConfValueMap map;
    map.assign("vtr.guid", "old");
    map.assign("vtr.locale", "old");
    map.assign("vtr.instance.X.a", "old");
    map.assign("vtr.instance.X.b", "old");
    ConfValueMap other;
    other.assign("vtr.guid", "new");
    other.assign("vtr.country", "new");
    other.assign("vtr.instance.X.b", "new");
    other.assign("vtr.instance.Y.a", "new");
    other.assign("vtr.instance.Z.a", "gone");
    other.erase("vtr.instance.Z.a");
    map.assignAll(other);
    expectSame(map, {{"vtr.country", "new"},
                     {"vtr.guid", "new"},
                     {"vtr.instance.X.a", "old"},
                     {"vtr.instance.X.b", "new"},
                     {"vtr.instance.Y.a", "new"},
                     {"vtr.locale", "old"}});
}

TEST(ConfValueMap, InstancesWhoseNamesBeginAlikeAreTwo) {
    const ConfDirectory properties{{"a", {ConfType::I32, "1"}}};
    std::vector<std::string> names{"A", "A-", "A0"};
    do {
        ConfValueMap map;
        for (const std::string& name : names) map.addMissing(name, properties);
        expectSame(
            map,
            {{"vtr.instance.A-.a", "1"}, {"vtr.instance.A.a", "1"}, {"vtr.instance.A0.a", "1"}});
    } while (std::next_permutation(names.begin(), names.end()));
}

TEST(ConfValueMap, AnInstanceWithADotInItsNameHasItsKeysInOrderAndOnce) {
    const ConfDirectory properties{{"a", {ConfType::I32, "1"}}, {"b", {ConfType::I32, "2"}}};
    ConfValueMap map;
    map.assign("vtr.instance.A.B.b", "own");
    map.addMissing("A", properties);
    map.addMissing("A.B", properties);
    expectSame(map, {{"vtr.instance.A.B.a", "1"},
                     {"vtr.instance.A.B.b", "own"},
                     {"vtr.instance.A.a", "1"},
                     {"vtr.instance.A.b", "2"}});
}

TEST(ConfValueMap, TheFeedTakesKeysInAnyOrder) {
    const ConfDirectory properties{
        {"a", {ConfType::I32, ""}}, {"b", {ConfType::I32, ""}}, {"c", {ConfType::I32, ""}}};
    ConfValueMap map;
    map.addMissing("X", properties);
    map.addMissing("Y", properties);
    ConfValueFeed feed(map);
    feed.enterInstance("Y");
    feed.assignInInstance("a", "1");
    feed.assignInInstance("b", "2");
    feed.assignInInstance("c", "3");
    feed.assignInInstance("c", "4");
    feed.assignInInstance("a", "5");
    feed.enterInstance("X");
    feed.assignInInstance("c", "6");
    feed.assignInInstance("b", "7");
    expectSame(map, {{"vtr.instance.X.a", ""},
                     {"vtr.instance.X.b", "7"},
                     {"vtr.instance.X.c", "6"},
                     {"vtr.instance.Y.a", "5"},
                     {"vtr.instance.Y.b", "2"},
                     {"vtr.instance.Y.c", "4"}});
}

TEST(ConfValueMap, TheFeedBringsBackANameThatWasErased) {
    const ConfDirectory properties{{"a", {ConfType::I32, ""}}, {"b", {ConfType::I32, ""}}};
    ConfValueMap map;
    map.addMissing("X", properties);
    map.erase("vtr.instance.X.b");
    ConfValueFeed feed(map);
    feed.enterInstance("X");
    feed.assignInInstance("a", "1");
    feed.assignInInstance("b", "2");
    expectSame(map, {{"vtr.instance.X.a", "1"}, {"vtr.instance.X.b", "2"}});
}

TEST(ConfValueMap, TheFeedTakesANameOutOfALongerText) {
    const ConfDirectory properties{{"a", {ConfType::I32, ""}}};
    ConfValueMap map;
    map.addMissing("X", properties);
    ConfValueFeed feed(map);
    feed.enterInstance(std::string_view("XY").substr(0, 1));
    feed.assignInInstance("a", "1");
    expectSame(map, {{"vtr.instance.X.a", "1"}});
}

TEST(ConfValueMap, TheFeedTakesAnEmptyNameBehindTheLast) {
    const ConfDirectory properties{{"a", {ConfType::I32, ""}}};
    ConfValueMap map;
    map.addMissing("X", properties);
    ConfValueFeed feed(map);
    feed.enterInstance("X");
    feed.assignInInstance("a", "1");
    feed.assignInInstance("", "2");
    feed.assignInInstance(std::string_view("a").substr(0, 0), "3");
    expectSame(map, {{"vtr.instance.X.", "3"}, {"vtr.instance.X.a", "1"}});
}
