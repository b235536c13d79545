#include "shared/Nearest.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

const std::vector<std::string> kNames{"instances", "install-apk", "install-image", "apps"};

std::string nearest(const std::string& word) { return nearestName(word, kNames).value_or(""); }

}  // namespace

TEST(Nearest, OneChangeIsFound) {
    EXPECT_EQ(nearest("instance"), "instances") << "a character is missing";
    EXPECT_EQ(nearest("instancess"), "instances") << "there is one too many";
    EXPECT_EQ(nearest("instanceg"), "instances") << "one is another";
    EXPECT_EQ(nearest("isntances"), "instances") << "two changed places";
    EXPECT_EQ(nearest("INSTANCES"), "instances") << "the case does not count";
}

TEST(Nearest, AThirdOfTheWordMayDiffer) {
    EXPECT_EQ(nearest("xxxtances"), "instances");
    EXPECT_EQ(nearest("xxxxances"), "");
    EXPECT_EQ(nearest("aps"), "apps");
    EXPECT_EQ(nearest("ap"), "") << "no character of so short a word";
    EXPECT_EQ(nearest(""), "");
}

TEST(Nearest, TheFewestChangesWin) {
    EXPECT_EQ(nearest("install-apq"), "install-apk");
    EXPECT_EQ(nearestName("b", {}), std::nullopt);
    EXPECT_EQ(nearestName("aab", {"aac", "aad"}), "aac") << "of equal ones the first";
}

TEST(Nearest, AnExactNameHasNoNearest) {
    EXPECT_EQ(nearest("apps"), "");
    EXPECT_EQ(nearestHint("apps", kNames), "");
    EXPECT_EQ(nearestHint("app", kNames), "did you mean apps?");
}
