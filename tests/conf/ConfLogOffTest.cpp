// What is refused, with every level off: the same results, and not a line.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ConfFixture.h"
#include "support/Subprocess.h"

namespace {

class ConfLogOffTest : public ConfTest {
 protected:
    // The lines that there would have been; none of them was printed.
    int lines() const {
        EXPECT_EQ(off.printed(), 0);
        return off.refused();
    }

    LogOff off;
};

// Reading fails after the open.
class ReadFailure : public ConfFiles {
 public:
    ConfFileRead read(const std::string&, std::string&) override {
        return ConfFileRead::ReadFailed;
    }
    XErr create(const std::string&, std::unique_ptr<ConfOutput>&) override { return XERR_IO; }
    XErr replace(const std::string&, const std::string&) override { return XERR_IO; }
    void remove(const std::string&) override {}
};

// Files that cannot be written to, or not be moved.
class WriteFailure : public ReadFailure {
 public:
    explicit WriteFailure(XErr written) : written_(written) {}

    ConfFileRead read(const std::string&, std::string& content) override {
        content.clear();
        return ConfFileRead::Done;
    }
    XErr create(const std::string&, std::unique_ptr<ConfOutput>& output) override {
        struct Output : ConfOutput {
            explicit Output(XErr result) : result_(result) {}
            XErr write(std::string_view, std::size_t& done) override {
                done = 0;
                return result_;
            }
            XErr result_;
        };
        output = std::make_unique<Output>(written_);
        return XERR_SUCCESS;
    }

 private:
    XErr written_;
};

}  // namespace

TEST_F(ConfLogOffTest, FilesThatDoNotLoad) {
    EXPECT_EQ(init("vtr.nothing=\"1\"\n"), -1);
    EXPECT_EQ(init("vtr.instance.A.nothing=\"1\"\n"), -1);
    EXPECT_EQ(init("foreign=\"1\"\n"), -1);
    EXPECT_EQ(init("\n"), -1);
    EXPECT_EQ(confLibInit(store, folder / "missing", false), -1);
    ReadFailure files;
    ConfStore unreadable(catalogue, files);
    EXPECT_EQ(confLibInit(unreadable, "C:\\x.conf", false), -1);
    EXPECT_EQ(lines(), 6);
}

TEST_F(ConfLogOffTest, KeysThatAreNotDeclared) {
    EXPECT_FALSE(confValidateProp(store, "vtr.nothing", ConfType::String, false));
    EXPECT_FALSE(confValidateProp(store, "vtr.locale", ConfType::I32, false));
    ConfCatalogue old;
    old.registerGlobal("old", {ConfType::String, "", false, true});
    const ConfStore other(old, confDiskFiles());
    EXPECT_FALSE(confValidateProp(other, "vtr.old", ConfType::String, false));
    EXPECT_EQ(lines(), 3);
}

TEST_F(ConfLogOffTest, InstancesThatAreNotThere) {
    ASSERT_EQ(init("vtr.instance.A.dpi=\"1\"\n"), 0);
    EXPECT_EQ(confSetCurrentInstance(store, "Z"), -1);
    EXPECT_EQ(confCopyInstance(store, "Z", "B"), -1);
    EXPECT_EQ(confCopyInstance(store, "A", "a.b"), XERR_INVAL);
    std::uint32_t size = 77;
    EXPECT_EQ(confGetInstanceAllConfigs(store, nullptr, 1 << 20, size), XERR_INVAL);
    EXPECT_EQ(size, 77u);
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(lines(), 4);
}

TEST_F(ConfLogOffTest, ACommit) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(confSetString(store, "vtr.locale", "b"), 0);
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_NE(folder.read("vantrel.conf").find("vtr.locale=\"b\"\n"), std::string::npos);
    EXPECT_EQ(lines(), 2);
}

TEST_F(ConfLogOffTest, CommitsThatFail) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    EXPECT_EQ(confSetString(store, "vtr.locale", "a\nb"), 0);
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"a\"\n");
    ReadFailure unopened;
    WriteFailure unwritten(XERR_NOSPC);
    WriteFailure unmoved(XERR_SUCCESS);
    for (ConfFiles* files :
         {static_cast<ConfFiles*>(&unopened), static_cast<ConfFiles*>(&unwritten),
          static_cast<ConfFiles*>(&unmoved)}) {
        ConfStore other(catalogue, *files);
        ASSERT_EQ(confLibInit(other, "", false), 0);
        EXPECT_EQ(confCommitToFile(other, "C:\\x.conf"),
                  files == &unwritten ? XERR_NOSPC : XERR_IO);
    }
    EXPECT_EQ(lines(), 2 + 3 * 2);
}

SUBPROCESS(confBreaksInSilence) {
    const TempFolder folder;
    const std::string path =
        folder.write("c",
                     "vtr.mem_pcd_pclimit=\"abc\"\nvtr.feature.rooting=\"maybe\"\nvtr.big=\"abc\"\n"
                     "vtr.instance.A.dpi=\"1\"\nvtr.locale=\"" +
                         std::string(92, 'x') + "\"\n");
    ConfCatalogue catalogue = confProductCatalogue();
    catalogue.registerGlobal("big", {ConfType::I64, "0"});
    ConfStore store(catalogue, confDiskFiles());
    const LogOff off;
    if (confLibInit(store, path, false) != 0) return 1;
    if (confSetCurrentInstance(store, "A") != 0) return 2;
    const std::string& what = arguments[0];
    if (what == "number") confGetI32(store, "vtr.mem_pcd_pclimit");
    if (what == "longNumber") confGetI64(store, "vtr.big");
    if (what == "bool") confGetBool(store, "vtr.feature.rooting");
    if (what == "removed") {
        confDeleteInstance(store, "A");
        confGetI32(store, "vtr.instance.A.dpi");
    }
    std::uint32_t size = 0;
    if (what == "dump") static_cast<void>(confGetInstanceAllConfigs(store, nullptr, 0, size));
    return 0;
}

TEST(ConfLogOffFatalTest, WhatIsFatalIsFatalInSilence) {
    for (const char* what : {"number", "longNumber", "bool", "removed", "dump"}) {
        const ChildResult result = runSubprocess("confBreaksInSilence", {what});
        EXPECT_EQ(result.status, kFatalStatus) << what;
        EXPECT_EQ(result.out, "") << what;
    }
}
