#include "ConfFixture.h"
#include "support/LogLines.h"
#include "support/Subprocess.h"
#include "xpl/Xpl.h"

namespace {

const std::string kDeprecated = "E CONF confValidateProp: Deprecated conf vtr.old";
const std::string kBadLongNumber = "E CONF confGetI64 error for vtr.big:abc";

class ConfAccessTest : public ConfTest {
 protected:
    void SetUp() override {
        given(
            "vtr.enable_adb_access=\"1\"\nvtr.locale=\"en-US\"\n"
            "vtr.instance.A.dpi=\"320\"\nvtr.instance.A.enable_vsync=\"1\"\n");
    }
};

}  // namespace

TEST_F(ConfAccessTest, ReadsEveryType) {
    EXPECT_TRUE(confGetBool(store, "vtr.enable_adb_access"));
    EXPECT_FALSE(confGetBool(store, "vtr.enable_adb_remote_access"));
    EXPECT_EQ(confGetI32(store, "vtr.instance.A.dpi"), 320);
    EXPECT_EQ(confGetI32(store, "vtr.instance.A.boot_duration"), -1);
    EXPECT_EQ(confGetString(store, "vtr.locale"), "en-US");
    EXPECT_EQ(confGetMultiString(store, "vtr.shared_folders"),
              "Documents,Pictures,InputMapper,VtrSharedFolder");
    EXPECT_EQ(confGetMultiStringList(store, "vtr.shared_folders"),
              (Lines{"Documents", "Pictures", "InputMapper", "VtrSharedFolder"}));
}

TEST_F(ConfAccessTest, AnEmptyNumberReadsAsZero) {
    EXPECT_EQ(confGetI32(store, "vtr.instance.A.ram"), 0);
    EXPECT_EQ(confGetI32(store, "vtr.status.imap_schema_version"), 0);
}

TEST_F(ConfAccessTest, AKeyOfAnUnknownInstanceReadsAsNothing) {
    EXPECT_EQ(confGetString(store, "vtr.instance.Z.display_name"), "");
    EXPECT_EQ(confGetI32(store, "vtr.instance.Z.dpi"), 0);
}

TEST_F(ConfAccessTest, AStagedValueIsReadAtOnceAndNotCommitted) {
    set("vtr.locale", "de-DE");
    set("vtr.instance.A.dpi", -5);
    EXPECT_EQ(confSetBool(store, "vtr.enable_adb_access", false), 0);
    EXPECT_EQ(confSetMultiStringList(store, "vtr.shared_folders", {"a", "", "b"}), 0);
    EXPECT_EQ(confGetString(store, "vtr.locale"), "de-DE");
    EXPECT_EQ(confGetI32(store, "vtr.instance.A.dpi"), -5);
    EXPECT_FALSE(confGetBool(store, "vtr.enable_adb_access"));
    EXPECT_EQ(confGetMultiString(store, "vtr.shared_folders"), "a,,b");
    EXPECT_EQ(committed("vtr.locale"), "en-US");
    EXPECT_TRUE(confIsPropPending(store, "vtr.locale"));
    EXPECT_FALSE(confIsPropPending(store, "vtr.guid"));
}

TEST_F(ConfAccessTest, NumbersAreStagedInDecimal) {
    set("vtr.instance.A.dpi", INT32_MIN);
    EXPECT_EQ(confGetStringInternal(store, "vtr.instance.A.dpi", ConfType::I32), "-2147483648");
    EXPECT_EQ(confGetI32(store, "vtr.instance.A.dpi"), INT32_MIN);
}

TEST_F(ConfAccessTest, SettingTheCommittedValueTakesTheChangeBack) {
    set("vtr.log_levels", "*:D");
    EXPECT_TRUE(confHasPendingChanges(store));
    set("vtr.log_levels", "*:I");
    EXPECT_FALSE(confHasPendingChanges(store));
}

TEST_F(ConfAccessTest, SettingAnUnknownInstanceMakesItKnownWithItsDefaults) {
    set("vtr.instance.New.ram", 2048);
    EXPECT_EQ(confGetInstances(store).count("New"), 1u);
    EXPECT_EQ(committed("vtr.instance.New.display_name"), "Vantrel");
    EXPECT_EQ(committed("vtr.instance.New.ram"), "");
    EXPECT_EQ(confGetI32(store, "vtr.instance.New.ram"), 2048);
}

TEST_F(ConfAccessTest, SettingANewInstancesKeyToItsDefaultStagesNothing) {
    set("vtr.instance.New.dpi", 240);
    EXPECT_EQ(confGetInstances(store).count("New"), 1u);
    EXPECT_FALSE(confHasPendingChanges(store));
    log.clear();
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(log.texts(XLOG_DEBUG), Lines{logged::nothingToCommit()});
}

TEST_F(ConfAccessTest, DiscardingForgetsEveryChange) {
    set("vtr.locale", "x");
    EXPECT_EQ(confDiscardChanges(store), 0);
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(confGetString(store, "vtr.locale"), "en-US");
}

TEST_F(ConfAccessTest, TypeNoneSkipsValidation) {
    EXPECT_EQ(confSetStringInternal(store, "vtr.unheard_of", ConfType::None, "x"), 0);
    EXPECT_TRUE(confIsPropPending(store, "vtr.unheard_of"));
    EXPECT_EQ(log.texts(), Lines{});
}

TEST_F(ConfAccessTest, TheCurrentInstanceShortensKeys) {
    EXPECT_EQ(confGetCurrentInstance(store), "");
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    EXPECT_EQ(confGetCurrentInstance(store), "A");
    EXPECT_EQ(confCurrentInstanceKey(store, "dpi"), "vtr.instance.A.dpi");
    EXPECT_EQ(confGetI32(store, confCurrentInstanceKey(store, "dpi")), 320);
    EXPECT_TRUE(confGetBool(store, confCurrentInstanceKey(store, "enable_vsync")));
    set(confCurrentInstanceKey(store, "dpi"), 5);
    EXPECT_TRUE(confIsPropPending(store, "vtr.instance.A.dpi"));
}

TEST_F(ConfAccessTest, AnUnknownInstanceCannotBeCurrent) {
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    EXPECT_EQ(confSetCurrentInstance(store, "X"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::instanceUnknown("X")});
    EXPECT_EQ(confGetCurrentInstance(store), "A");
}

TEST_F(ConfAccessTest, RestoringADefaultStagesIt) {
    EXPECT_EQ(confRestorePropDefault(store, "vtr.enable_adb_access"), 0);
    EXPECT_FALSE(confGetBool(store, "vtr.enable_adb_access"));
    EXPECT_TRUE(confIsPropPending(store, "vtr.enable_adb_access"));
}

TEST_F(ConfAccessTest, RestoringLeavesAPendingChangeWhereTheFileHasTheDefault) {
    set("vtr.log_levels", "*:D");
    EXPECT_EQ(confRestorePropDefault(store, "vtr.log_levels"), 0);
    EXPECT_EQ(confGetString(store, "vtr.log_levels"), "*:D");
}

TEST_F(ConfAccessTest, ValidationSaysWhyNot) {
    EXPECT_TRUE(confValidateProp(store, "vtr.locale", ConfType::String, false));
    EXPECT_TRUE(confValidateProp(store, "vtr.instance.Z.dpi", ConfType::I32, false));
    EXPECT_EQ(log.texts(), Lines{});
    EXPECT_FALSE(confValidateProp(store, "vtr.nothing", ConfType::String, false));
    EXPECT_FALSE(confValidateProp(store, "vtr.locale", ConfType::I32, false));
    EXPECT_FALSE(confValidateProp(store, "vtr.instance.A.nothing", ConfType::I32, false));
    EXPECT_FALSE(confValidateProp(store, "vtr.instance.A", ConfType::I32, false));
    EXPECT_FALSE(confValidateProp(store, "vtr.instance.A.dpi", ConfType::Bool, false));
    EXPECT_FALSE(confValidateProp(store, "locale", ConfType::String, false));
    EXPECT_FALSE(confValidateProp(store, "", ConfType::String, false));
    EXPECT_EQ(log.texts(), (Lines{logged::keyUnknown("vtr.nothing"),
                                  "E CONF vtr.locale type of the prop is not matching",
                                  logged::keyUnknown("vtr.instance.A.nothing", "iprop"),
                                  logged::keyUnknown("vtr.instance.A", "iprop"),
                                  "E CONF vtr.instance.A.dpi type of the iprop is not matching",
                                  logged::keyUnknown("locale"), logged::keyUnknown("")}));
}

TEST_F(ConfAccessTest, ADeprecatedPropertyIsRefusedUnlessAllowed) {
    ConfCatalogue old;
    old.registerGlobal("old", deprecatedText());
    ConfStore other(old, confDiskFiles());
    EXPECT_TRUE(confValidateProp(other, "vtr.old", ConfType::String, true));
    EXPECT_FALSE(confValidateProp(other, "vtr.old", ConfType::String, false));
    EXPECT_EQ(log.texts(), Lines{kDeprecated});
}

TEST_F(ConfAccessTest, ValidationLogsUnderItsOwnName) {
    ConfCatalogue old;
    old.registerGlobal("old", deprecatedText());
    const ConfStore other(old, confDiskFiles());
    EXPECT_FALSE(confValidateProp(store, "vtr.nothing", ConfType::String, false));
    EXPECT_FALSE(confValidateProp(store, "vtr.instance.A.dpi", ConfType::String, false));
    EXPECT_FALSE(confValidateProp(other, "vtr.old", ConfType::String, false));
    EXPECT_EQ(log.texts(),
              (Lines{logged::keyUnknown("vtr.nothing"),
                     "E CONF vtr.instance.A.dpi type of the iprop is not matching", kDeprecated}));
    for (const LogCapture::Line& line : log.lines()) EXPECT_EQ(line.function, "confValidateProp");
}

TEST(ConfMultiString, SplitsAtEveryComma) {
    EXPECT_EQ(confSplitMultiString(""), Lines{});
    EXPECT_EQ(confSplitMultiString("a"), Lines{"a"});
    EXPECT_EQ(confSplitMultiString("a,"), (Lines{"a", ""}));
    EXPECT_EQ(confSplitMultiString(",a,,b"), (Lines{"", "a", "", "b"}));
    EXPECT_EQ(confSplitMultiString(","), (Lines{"", ""}));
}

TEST(ConfMultiString, JoiningLosesLeadingEmptyElementsOnly) {
    EXPECT_EQ(confJoinMultiString({}), "");
    EXPECT_EQ(confJoinMultiString({"", "a"}), "a");
    EXPECT_EQ(confJoinMultiString({"a", "", "b"}), "a,,b");
    EXPECT_EQ(confJoinMultiString({"a", ""}), "a,");
}

// Does one fatal thing, with the log on standard output; with a second argument its lines show the
// function.
SUBPROCESS(confFatal) {
    TempFolder folder;
    const std::string path = folder.write(
        "c",
        "vtr.feature.rooting=\"maybe\"\nvtr.mem_pcd_pclimit=\"abc\"\nvtr.instance.A.dpi=\"1\"\n");
    if (xplLibInit(nullptr, "") != 0) return 1;
    ConfStore& store = confStore();
    if (confLibInit(store, path, false) != 0) return 2;
    xlogSetDisplay(false, arguments.size() > 1, false);
    const std::string& what = arguments[0];
    if (what == "getUnknown") confGetString(store, "vtr.nothing");
    if (what == "getWrongType") confGetI32(store, "vtr.locale");
    if (what == "getI64") confGetI64(store, "vtr.next_vm_id");
    if (what == "getEmptyBool") confGetBool(store, "vtr.prefer_dedicated_gpu");
    if (what == "getBadBool") confGetBool(store, "vtr.feature.rooting");
    if (what == "getBadNumber") confGetI32(store, "vtr.mem_pcd_pclimit");
    if (what == "getMissingBool") confGetBool(store, "vtr.instance.Z.enable_vsync");
    if (what == "setUnknown") confSetString(store, "vtr.nothing", "x");
    if (what == "setWrongType") confSetBool(store, "vtr.locale", true);
    if (what == "restoreUnknown") confRestorePropDefault(store, "vtr.nothing");
    if (what == "restoreShort") confRestorePropDefault(store, "vt");
    if (what == "getRemoved") {
        {
            const std::lock_guard<XsharedMutex> changing(store.viewLock);
            const ConfKey key = confFindKey(store.catalogue, "vtr.instance.A.dpi");
            store.view.remove(store.view.value(key));
        }
        confGetI32(store, "vtr.instance.A.dpi");
    }
    return 0;
}

namespace {

struct FatalCase {
    const char* what;
    std::string line;  // the one before the fatal one; empty: none
};

void PrintTo(const FatalCase& fatal, std::ostream* out) { *out << fatal.what; }

class ConfFatalTest : public ::testing::TestWithParam<FatalCase> {};

}  // namespace

TEST_P(ConfFatalTest, EndsTheProcess) {
    expectConfBreak("confFatal", {GetParam().what}, GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ConfFatalTest,
    ::testing::Values(
        FatalCase{"getUnknown", logged::keyUnknown("vtr.nothing")},
        FatalCase{"getWrongType", "E CONF vtr.locale type of the prop is not matching"},
        FatalCase{"getI64", "E CONF vtr.next_vm_id type of the prop is not matching"},
        FatalCase{"getEmptyBool", logged::boolInvalid("vtr.prefer_dedicated_gpu", "")},
        FatalCase{"getBadBool", logged::boolInvalid("vtr.feature.rooting", "maybe")},
        FatalCase{"getBadNumber", logged::numberInvalid("vtr.mem_pcd_pclimit", "abc")},
        FatalCase{"getMissingBool", logged::boolInvalid("vtr.instance.Z.enable_vsync", "")},
        FatalCase{"setUnknown", logged::keyUnknown("vtr.nothing")},
        FatalCase{"setWrongType", "E CONF vtr.locale type of the prop is not matching"},
        FatalCase{"restoreUnknown", ""}, FatalCase{"restoreShort", ""},
        FatalCase{"getRemoved", logged::keyRemoved("vtr.instance.A.dpi")}),
    [](const auto& info) { return std::string(info.param.what); });

namespace {

// The line with its function.
std::string in(const std::string& function, const std::string& line) {
    return "E CONF " + function + " " + logged::messageOf(line);
}

}  // namespace

TEST(ConfFatalFunction, ABadNumberIsLoggedByTheFunctionThatReadsIt) {
    expectConfBreak("confFatal", {"getBadNumber", "shown"},
                    in("confGetI32", logged::numberInvalid("vtr.mem_pcd_pclimit", "abc")),
                    "confGetI32");
    expectConfBreak("readsABadLongNumber", {"shown"}, in("confGetI64", kBadLongNumber),
                    "confGetI64");
}

TEST(ConfFatalFunction, ABadBoolIsLoggedByTheFunctionThatReadsIt) {
    expectConfBreak("confFatal", {"getBadBool", "shown"},
                    in("confGetBool", logged::boolInvalid("vtr.feature.rooting", "maybe")),
                    "confGetBool");
}

TEST(ConfFatalFunction, AKeyThatIsRefusedIsLoggedByTheValidation) {
    const std::string line = in("confValidateProp", logged::keyUnknown("vtr.nothing"));
    expectConfBreak("confFatal", {"getUnknown", "shown"}, line, "confGetStringInternal");
    expectConfBreak("confFatal", {"setUnknown", "shown"}, line, "confSetStringInternal");
}

TEST_F(ConfAccessTest, RemovedKeysArePendingAndLeaveTheOthersReadable) {
    ASSERT_EQ(confDeleteInstance(store, "A"), 0);
    EXPECT_TRUE(confIsPropPending(store, "vtr.instance.A.dpi"));
    EXPECT_FALSE(confIsPropPending(store, "vtr.locale"));
    EXPECT_EQ(confGetString(store, "vtr.locale"), "en-US");
}

namespace {

// What the product declares nothing of: long numbers, and properties that are on their way out.
ConfCatalogue& rare() {
    static ConfCatalogue catalogue;
    static const bool once = [] {
        catalogue.registerGlobal("big", {ConfType::I64, "0"});
        catalogue.registerGlobal("old", deprecatedText());
        return true;
    }();
    static_cast<void>(once);
    return catalogue;
}

// In a subprocess: loads the content and gives the store to what ends the process.
template <typename Use>
int useRare(std::string_view content, bool allowDeprecated, Use use) {
    TempFolder folder;
    if (xplLibInit(nullptr, "") != 0) return 1;
    ConfStore store(rare(), confDiskFiles());
    if (confLibInit(store, folder.write("c", content), allowDeprecated) != 0) return 2;
    use(store);
    return 0;
}

class ConfRareTest : public ConfTest {
 protected:
    ConfStore rareStore{rare(), confDiskFiles()};
};

}  // namespace

TEST_F(ConfRareTest, ALongNumberKeepsItsBits) {
    ASSERT_EQ(confLibInit(rareStore, folder.write("c", "vtr.big=\"9000000000\"\n"), false), 0);
    EXPECT_EQ(confGetI64(rareStore, "vtr.big"), 9000000000);
    EXPECT_EQ(confSetI64(rareStore, "vtr.big", INT64_MIN), 0);
    EXPECT_EQ(confGetStringInternal(rareStore, "vtr.big", ConfType::I64), "-9223372036854775808");
    EXPECT_EQ(confGetI64(rareStore, "vtr.big"), INT64_MIN);
}

SUBPROCESS(readsABadLongNumber) {
    const bool showFunction = !arguments.empty();
    return useRare("vtr.big=\"abc\"\n", false, [showFunction](ConfStore& store) {
        xlogSetDisplay(false, showFunction, false);
        confGetI64(store, "vtr.big");
    });
}

TEST_F(ConfRareTest, ALongNumberThatCannotBeReadEndsTheProcess) {
    expectConfBreak("readsABadLongNumber", {}, kBadLongNumber);
}

SUBPROCESS(readsADeprecatedProperty) {
    return useRare("", false, [](ConfStore& store) { confGetString(store, "vtr.old"); });
}

TEST_F(ConfRareTest, ReadingADeprecatedPropertyEndsTheProcessUnlessAllowed) {
    ASSERT_EQ(confLibInit(rareStore, folder.write("c", "vtr.old=\"x\"\n"), true), 0);
    EXPECT_EQ(confGetString(rareStore, "vtr.old"), "x");
    expectConfBreak("readsADeprecatedProperty", {}, kDeprecated);
}

SUBPROCESS(setsADeprecatedProperty) {
    return useRare("", /*allowDeprecated=*/true,
                   [](ConfStore& store) { confSetString(store, "vtr.old", "x"); });
}

TEST_F(ConfRareTest, SettingADeprecatedPropertyEndsTheProcessAlsoWhereItMayBeRead) {
    expectConfBreak("setsADeprecatedProperty", {}, kDeprecated);
}
