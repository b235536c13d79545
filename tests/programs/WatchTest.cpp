// Changes that `bridgectl watch` detects, and its screen.
#include "Watch.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

constexpr LocalTime kTime{2024, 3, 7, 4, 5, 9, 42, 330};

const std::string kConfiguration =
    "vtr.locale=\"fr\"\nvtr.instance.Nougat64.display_name=\"Jeux 日本\"\n"
    "vtr.instance.Nougat64_1.ram=\"1\"\n";

// Changes as lines without times.
Texts changes(const WatchState& before, const WatchState& after) {
    Texts lines;
    for (const WatchChange& change : changesBetween(before, after)) {
        const std::string line = changeText(kTime, change);
        lines.push_back(line.substr(30, line.size() - 31));
    }
    return lines;
}

std::string screen(const WatchState& state, const WatchHistory& history, std::size_t columns,
                   std::size_t rows) {
    return watchScreen(state, history, {columns, rows}, TextStyle());
}

}  // namespace

TEST(Watch, TheConfigurationHasInstancesAndValues) {
    const WatchState state = watchedConfiguration(kConfiguration);
    ASSERT_EQ(state.instances.size(), 2u);
    EXPECT_EQ(state.instances.at("Nougat64").displayName, "Jeux 日本");
    EXPECT_EQ(state.instances.at("Nougat64_1").displayName, "Vantrel");
    EXPECT_EQ(state.values.at("vtr.locale"), "fr");
    EXPECT_EQ(state.values.at("vtr.instance.Nougat64_1.dpi"), "240");
    EXPECT_FALSE(state.managerIsRunning);
}

TEST(Watch, NothingChangesWhenNothingDoes) {
    const WatchState state = watchedConfiguration(kConfiguration);
    EXPECT_EQ(changes(state, state), Texts{});
}

TEST(Watch, ProgramsStartAndEnd) {
    const WatchState before = watchedConfiguration(kConfiguration);
    WatchState after = before;
    after.instances["Nougat64"].isRunning = true;
    after.managerIsRunning = true;
    EXPECT_EQ(changes(before, after),
              (Texts{"player-started instance=\"Nougat64\"", "manager-started"}));
    EXPECT_EQ(changes(after, before),
              (Texts{"player-ended instance=\"Nougat64\"", "manager-ended"}));
}

TEST(Watch, InstancesAreAddedAndRemovedWithoutTheirValues) {
    const WatchState one = watchedConfiguration("vtr.instance.Nougat64.ram=\"1\"\n");
    WatchState two = watchedConfiguration(kConfiguration);
    two.values["vtr.locale"] = one.values.at("vtr.locale");
    two.values["vtr.instance.Nougat64.ram"] = "1";
    two.values["vtr.instance.Nougat64.display_name"] = "Vantrel";
    two.instances["Nougat64_1"].isRunning = true;
    EXPECT_EQ(changes(one, two), (Texts{"instance-added instance=\"Nougat64_1\"",
                                        "player-started instance=\"Nougat64_1\""}));
    EXPECT_EQ(changes(two, one), (Texts{"player-ended instance=\"Nougat64_1\"",
                                        "instance-removed instance=\"Nougat64_1\""}));
}

TEST(Watch, ValuesChange) {
    const WatchState before = watchedConfiguration(kConfiguration);
    WatchState after = before;
    after.values["vtr.locale"] = "\x1B[31m";
    EXPECT_EQ(changes(before, after),
              Texts{R"(value-changed key="vtr.locale" before="fr" after="\u001b[31m")"});
    EXPECT_EQ(changeJson(kTime, changesBetween(before, after)[0]),
              R"({"time":"2024-03-07T04:05:09.042+05:30","change":"value-changed",)"
              R"("key":"vtr.locale","before":"fr","after":"\u001b[31m"})"
              "\n");
}

TEST(Watch, TheScreenShowsEverything) {
    WatchState state = watchedConfiguration(kConfiguration);
    state.instances["Nougat64"].isRunning = true;
    WatchHistory history;
    history.add(history.events, "an event\n");
    history.add(history.settings, "a setting\n");
    EXPECT_EQ(screen(state, history, 80, 24),
              "\x1b[HINSTANCE    NAME       PLAYER\x1b[K\n"
              "Nougat64    Jeux 日本  running\x1b[K\n"
              "Nougat64_1  Vantrel    -\x1b[K\n"
              "(manager)              -\x1b[K\n"
              "\x1b[K\n"
              "Changed settings:\x1b[K\n"
              "a setting\x1b[K\n"
              "\x1b[K\n"
              "Events:\x1b[K\n"
              "an event\x1b[K\n"
              "\x1b[J");
}

TEST(Watch, TheScreenFitsTheWindow) {
    const WatchState state = watchedConfiguration("vtr.instance.Nougat64.display_name=\"日本\"\n");
    WatchHistory history;
    for (int i = 1; i <= 300; ++i) history.add(history.events, "event " + std::to_string(i));
    for (int i = 1; i <= 9; ++i) history.add(history.settings, "setting " + std::to_string(i));
    EXPECT_EQ(screen(state, history, 15, 16),
              "\x1b[HINSTANCE   NAM\x1b[K\nNougat64   日\x1b[K\n(manager)     \x1b[K\n\x1b[K\n"
              "Changed settin\x1b[K\nsetting 5\x1b[K\nsetting 6\x1b[K\nsetting 7\x1b[K\n"
              "setting 8\x1b[K\nsetting 9\x1b[K\n\x1b[K\nEvents:\x1b[K\nevent 298\x1b[K\n"
              "event 299\x1b[K\nevent 300\x1b[K\n\x1b[J");
}
