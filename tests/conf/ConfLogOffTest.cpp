// Refused calls with every level off: the same results without a line.
#include "ConfFixture.h"
#include "HookedFiles.h"
#include "support/SilentCalls.h"

namespace {

using Step = HookedFiles::Step;

class ConfLogOffTest : public ConfTest {
 protected:
    int loadWithoutBytes() {
        HookedFiles files(Step::Read, XERR_IO);
        ConfStore unreadable(catalogue, files);
        return confLibInit(unreadable, path(), false);
    }

    bool validateDeprecated() {
        ConfCatalogue old;
        old.registerGlobal("old", deprecatedText());
        const ConfStore other(old, confDiskFiles());
        return confValidateProp(other, "vtr.old", ConfType::String, false);
    }

    int listIntoNoMemory() {
        std::uint32_t size = 77;
        const int result = confGetInstanceAllConfigs(store, nullptr, 1 << 20, size);
        EXPECT_EQ(size, 77u);
        EXPECT_FALSE(confHasPendingChanges(store));
        return result;
    }

    // Commits a value and expects this one in the file. A failed commit leaves the file unchanged.
    int commit(const char* value, const std::string& expected) {
        set("vtr.locale", value);
        const std::string before = file();
        const int result = confCommit(store);
        if (result != 0) EXPECT_EQ(file(), before);
        EXPECT_NE(file().find(expected), std::string::npos);
        return result;
    }

    int commitToFile(Step failing, XErr err) {
        HookedFiles files(failing, err);
        ConfStore other(catalogue, files);
        EXPECT_EQ(confLibInit(other, "", false), 0);
        return confCommitToFile(other, folder / "new");
    }
};

}  // namespace

TEST_F(ConfLogOffTest, WhatIsRefusedIsRefusedInSilence) {
    expectSilence({
        {"load an unknown key", -1, 1, [&] { return init("vtr.nothing=\"1\"\n"); }},
        {"load an unknown key of an instance", -1, 1,
         [&] { return init("vtr.instance.A.nothing=\"1\"\n"); }},
        {"load a key without the prefix", -1, 1, [&] { return init("foreign=\"1\"\n"); }},
        {"load an empty line", -1, 1, [&] { return init("\n"); }},
        {"load no file", -1, 1, [&] { return confLibInit(store, folder / "missing", false); }},
        {"load a file that cannot be read", -1, 1, [&] { return loadWithoutBytes(); }},
        {"validate an unknown key", false, 1,
         [&] { return confValidateProp(store, "vtr.nothing", ConfType::String, false); }},
        {"validate a key of another type", false, 1,
         [&] { return confValidateProp(store, "vtr.locale", ConfType::I32, false); }},
        {"validate a deprecated key", false, 1, [&] { return validateDeprecated(); }},
        {"load", 0, 0, [&] { return init("vtr.locale=\"a\"\nvtr.instance.A.dpi=\"1\"\n"); }},
        {"choose a missing instance", -1, 1, [&] { return confSetCurrentInstance(store, "Z"); }},
        {"copy a missing instance", -1, 1, [&] { return confCopyInstance(store, "Z", "B"); }},
        {"copy to an impossible name", XERR_INVAL, 1,
         [&] { return confCopyInstance(store, "A", "a.b"); }},
        {"list into no memory", XERR_INVAL, 1, [&] { return listIntoNoMemory(); }},
        {"commit no change", 0, 1, [&] { return commit("a", "vtr.locale=\"a\"\n"); }},
        {"commit a line feed", XERR_INVAL, 2, [&] { return commit("a\nb", "vtr.locale=\"a\"\n"); }},
        {"commit", 0, 1, [&] { return commit("b", "vtr.locale=\"b\"\n"); }},
        {"commit without a file", XERR_IO, 2, [&] { return commitToFile(Step::Create, XERR_IO); }},
        {"commit without space", XERR_NOSPC, 2,
         [&] { return commitToFile(Step::Write, XERR_NOSPC); }},
        {"commit without the move", XERR_IO, 2,
         [&] { return commitToFile(Step::Replace, XERR_IO); }},
    });
}

TEST(ConfLogOffFatalTest, WhatIsFatalIsFatalInSilence) {
    for (const char* call : {"getBadNumber", "getBadLongNumber", "getBadBool", "getRemoved"}) {
        expectSilentBreak("confFatal", {call, "silent"});
    }
    expectSilentBreak("dumps", {"AGlobalValueOf92Bytes", "silent"});
}
