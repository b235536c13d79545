#include "Obstacle.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

Check checkWith(std::vector<std::string> needs) {
    Check check;
    check.id = "x";
    check.command = {"tests/x.exe"};
    check.needs = std::move(needs);
    return check;
}

// A process that can write machine keys where it is elevated, as on Windows.
Conditions conditions(bool isWine, bool isElevated, std::vector<std::string> taken = {}) {
    return {isWine, isElevated, isElevated, std::move(taken)};
}

constexpr const char* kElevation = "needs elevation, to write to HKEY_LOCAL_MACHINE";

}  // namespace

TEST(KitObstacle, ACheckWithoutNeedsIsRunEverywhere) {
    for (const bool isWine : {false, true}) {
        for (const bool isElevated : {false, true}) {
            const Obstacle obstacle = obstacleOf(checkWith({}), conditions(isWine, isElevated));
            EXPECT_EQ(obstacle.outcome, Outcome::Passed);
            EXPECT_EQ(obstacle.reason, "");
        }
    }
}

TEST(KitObstacle, WineIsReportedAsSuch) {
    const Obstacle obstacle =
        obstacleOf(checkWith({"windows", "elevated"}), conditions(true, false));
    EXPECT_EQ(obstacle.outcome, Outcome::NeedsWindows);
    EXPECT_EQ(obstacle.reason, "this is Wine");
    EXPECT_EQ(obstacleOf(checkWith({"windows"}), conditions(false, false)).outcome,
              Outcome::Passed);
}

TEST(KitObstacle, WithoutElevationWhatNeedsItIsSkippedWithItsReason) {
    const Obstacle obstacle = obstacleOf(checkWith({"elevated"}), conditions(false, false));
    EXPECT_EQ(obstacle.outcome, Outcome::Skipped);
    EXPECT_EQ(obstacle.reason, kElevation);
    EXPECT_EQ(obstacleOf(checkWith({"elevated"}), conditions(false, true)).outcome,
              Outcome::Passed);
}

TEST(KitObstacle, WhereAnyoneWritesMachineKeysNoElevationIsNeeded) {
    const Conditions wine = {true, false, true, {}};
    EXPECT_EQ(obstacleOf(checkWith({"elevated"}), wine).outcome, Outcome::Passed);
    EXPECT_EQ(obstacleOf(checkWith({"plain"}), wine).outcome, Outcome::Passed);
}

TEST(KitObstacle, WithElevationNoPromptCanBeChecked) {
    const Obstacle obstacle = obstacleOf(checkWith({"plain"}), conditions(false, true));
    EXPECT_EQ(obstacle.outcome, Outcome::Skipped);
    EXPECT_EQ(obstacle.reason, "needs a start without elevation");
    EXPECT_EQ(obstacleOf(checkWith({"plain"}), conditions(false, false)).outcome, Outcome::Passed);
}

TEST(KitObstacle, AProgramThatAScannerTookIsNamed) {
    const Obstacle obstacle =
        obstacleOf(checkWith({}), conditions(false, false, {"bin/a.dll", "tests/x.exe"}));
    EXPECT_EQ(obstacle.outcome, Outcome::Skipped);
    EXPECT_EQ(obstacle.reason, "tests/x.exe is missing or changed");
    EXPECT_EQ(obstacleOf(checkWith({}), conditions(false, false, {"tests/y.exe"})).outcome,
              Outcome::Passed);
}
