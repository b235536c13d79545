// What is refused, with every level off: the same results, and not a line.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "AppcFixture.h"
#include "support/Platform.h"

namespace {

class AppcLogOffTest : public AppcTest {
 protected:
    // The lines that there would have been; none of them was printed.
    int lines() const {
        EXPECT_EQ(off.printed(), 0);
        return off.refused();
    }

    LogOff off;
};

}  // namespace

TEST_F(AppcLogOffTest, FilesThatDoNotLoad) {
    EXPECT_EQ(appcLibInit(store, "Nougat64"), 0) << "there is none";
    EXPECT_EQ(init("{}"), 0);
    EXPECT_FALSE(exists());
    EXPECT_EQ(init("[{}]"), -1);
    EXPECT_EQ(init(R"([{"package": 5}])"), -1);
    EXPECT_EQ(lines(), 2 + 2 + 2);
}

TEST_F(AppcLogOffTest, AFolderInPlaceOfTheFile) {
    std::filesystem::create_directories(systemPath(file()));
    EXPECT_EQ(appcLibInit(store, "Nougat64"), 0);
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(lines(), 1);
}

TEST_F(AppcLogOffTest, ListsThatDoNotSync) {
    ASSERT_EQ(init("[]"), 0);
    EXPECT_EQ(appcSyncInstalledApps(store, nullptr), -1);
    EXPECT_EQ(appcSyncInstalledApps(store, R"({"apps": [3]})"), -1);
    EXPECT_EQ(read(), "[]");
    EXPECT_EQ(lines(), 2);
}

TEST_F(AppcLogOffTest, CopiesOfInstances) {
    EXPECT_EQ(appcCopyInstance(store, "Nougat32", "Nougat32_1"), -1);
    ASSERT_EQ(init("[]"), 0);
    EXPECT_EQ(appcCopyInstance(store, "Nougat64", "Nowhere\\Nougat64_1"), -1);
    EXPECT_EQ(lines(), 2);
}

namespace {

// A disk on which one step fails.
class Failing : public AppcFiles {
 public:
    enum Step { Folder, Open, Write, Move };
    explicit Failing(Step step) : step_(step) {}

    std::int32_t read(const std::string&, std::string&) override { return 2; }
    XErr makeFolder(const std::string&) override { return step_ == Folder ? XERR_ACCES : 0; }
    bool isReplaceable(const std::string&) override { return true; }
    AppcWrite write(const std::string&, std::string_view) override {
        if (step_ == Open) return AppcWrite::OpenFailed;
        return step_ == Write ? AppcWrite::WriteFailed : AppcWrite::Done;
    }
    XErr replace(const std::string&, const std::string&) override { return XERR_ACCES; }
    void remove(const std::string&) override { ++removed; }

    int removed = 0;

 private:
    Step step_;
};

}  // namespace

TEST_F(AppcLogOffTest, SavesThatFail) {
    for (const Failing::Step step :
         {Failing::Folder, Failing::Open, Failing::Write, Failing::Move}) {
        Failing files(step);
        ForeignStore other(data.path(), files);
        ASSERT_EQ(appcLibInit(other, "Nougat32"), 0);
        EXPECT_EQ(appcSaveToFile(other), step == Failing::Folder ? XERR_ACCES : -1);
        EXPECT_EQ(files.removed, step == Failing::Write || step == Failing::Move ? 1 : 0);
    }
    EXPECT_EQ(lines(), 4 * 2);
}
