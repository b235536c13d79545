#include "Manifest.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KitOptions.h"
#include "Snapshot.h"

namespace {

const std::string kA(64, 'a');
const std::string kB(64, 'b');

}  // namespace

TEST(KitManifest, ALineIsADigestAndAPath) {
    const auto files = readManifest(kA + "  bin/x y.dll\r\n" + kB + "  é\n");
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].path, "bin/x y.dll");
    EXPECT_EQ(files[0].digest, kA);
    EXPECT_EQ(files[1].path, "é");
}

TEST(KitManifest, ADamagedOneSaysNothing) {
    EXPECT_TRUE(readManifest("").empty());
    EXPECT_TRUE(readManifest(kA + "  x\nfoo\n").empty());
    EXPECT_TRUE(readManifest(std::string(64, 'x') + "  x\n").empty());
}

TEST(KitManifest, MissingAndChangedFilesAreNamed) {
    const auto digest = [](const std::string& path) -> FileDigest {
        if (path == "gone") return {"", "missing"};
        return {path == "same" ? kA : kB, ""};
    };
    const auto faults = compareFiles({{"same", kA}, {"other", kA}, {"gone", kA}}, digest);
    ASSERT_EQ(faults.size(), 2u);
    EXPECT_EQ(faults[0].path, "other");
    EXPECT_EQ(faults[0].what, "changed");
    EXPECT_EQ(faults[1].path, "gone");
    EXPECT_EQ(faults[1].what, "missing");
}

TEST(KitSnapshot, DifferencesAreWhatIsGoneChangedAndNew) {
    EXPECT_EQ(
        differences({{"a", "1"}, {"b", "1"}, {"c", "1"}}, {{"a", "1"}, {"b", "2"}, {"d", "1"}}),
        (std::vector<std::string>{"* b", "- c", "+ d"}));
    EXPECT_TRUE(differences({{"a", "1"}}, {{"a", "1"}}).empty());
}

TEST(KitOptions, AreRead) {
    const auto options = readKitOptions({"--only", "a,b", "--no-questions"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->runner.only, (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(options->runner.questions);
    EXPECT_FALSE(options->help);
    EXPECT_TRUE(readKitOptions({})->runner.questions);
    EXPECT_TRUE(readKitOptions({"--help"})->help);
    EXPECT_FALSE(readKitOptions({"--only"}));
    EXPECT_FALSE(readKitOptions({"x"}));
}
