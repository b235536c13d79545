#include "ConfFixture.h"
#include "support/LogLines.h"
#include "support/Rows.h"
#include "support/Subprocess.h"
#include "xpl/Xpl.h"

namespace {

const std::string kDeprecated = "E CONF confValidateProp: Deprecated conf vtr.old";
const std::string kBadLongNumber = "E CONF confGetI64 error for vtr.big:abc";

std::string wrongType(const std::string& key, const std::string& kind = "prop") {
    return "E CONF " + key + " type of the " + kind + " is not matching";
}

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

TEST_F(ConfAccessTest, ValidationLogsWhatItRefuses) {
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
    EXPECT_EQ(log.texts(), (Lines{logged::keyUnknown("vtr.nothing"), wrongType("vtr.locale"),
                                  logged::keyUnknown("vtr.instance.A.nothing", "iprop"),
                                  logged::keyUnknown("vtr.instance.A", "iprop"),
                                  wrongType("vtr.instance.A.dpi", "iprop"),
                                  logged::keyUnknown("locale"), logged::keyUnknown("")}));
}

TEST_F(ConfAccessTest, RemovedKeysArePendingAndLeaveTheOthersReadable) {
    ASSERT_EQ(confDeleteInstance(store, "A"), 0);
    EXPECT_TRUE(confIsPropPending(store, "vtr.instance.A.dpi"));
    EXPECT_FALSE(confIsPropPending(store, "vtr.locale"));
    EXPECT_EQ(confGetString(store, "vtr.locale"), "en-US");
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

namespace {

// The product's catalogue plus what it lacks: 64-bit numbers and deprecated properties.
ConfCatalogue rareCatalogue() {
    ConfCatalogue catalogue = confProductCatalogue();
    catalogue.registerGlobal("big", {ConfType::I64, "0"});
    catalogue.registerGlobal("old", deprecatedText());
    return catalogue;
}

void removeKey(ConfStore& store, std::string_view text) {
    const std::lock_guard<XsharedMutex> changing(store.viewLock);
    store.view.remove(store.view.value(confFindKey(store.catalogue, text)));
}

// A call that ends the process.
struct FatalCall {
    const char* name;
    std::string line;  // that is logged before the break; may be empty
    std::function<void(ConfStore&)> run;
};

const FatalCall kFatalCalls[] = {
    {"getUnknown", logged::keyUnknown("vtr.nothing"),
     [](ConfStore& s) { confGetString(s, "vtr.nothing"); }},
    {"getWrongType", wrongType("vtr.locale"), [](ConfStore& s) { confGetI32(s, "vtr.locale"); }},
    {"getI64", wrongType("vtr.next_vm_id"), [](ConfStore& s) { confGetI64(s, "vtr.next_vm_id"); }},
    {"getEmptyBool", logged::boolInvalid("vtr.prefer_dedicated_gpu", ""),
     [](ConfStore& s) { confGetBool(s, "vtr.prefer_dedicated_gpu"); }},
    {"getBadBool", logged::boolInvalid("vtr.feature.rooting", "maybe"),
     [](ConfStore& s) { confGetBool(s, "vtr.feature.rooting"); }},
    {"getBadNumber", logged::numberInvalid("vtr.mem_pcd_pclimit", "abc"),
     [](ConfStore& s) { confGetI32(s, "vtr.mem_pcd_pclimit"); }},
    {"getBadLongNumber", kBadLongNumber, [](ConfStore& s) { confGetI64(s, "vtr.big"); }},
    {"getMissingBool", logged::boolInvalid("vtr.instance.Z.enable_vsync", ""),
     [](ConfStore& s) { confGetBool(s, "vtr.instance.Z.enable_vsync"); }},
    {"getDeprecated", kDeprecated, [](ConfStore& s) { confGetString(s, "vtr.old"); }},
    {"getRemoved", logged::keyRemoved("vtr.instance.A.dpi"),
     [](ConfStore& s) {
         removeKey(s, "vtr.instance.A.dpi");
         confGetI32(s, "vtr.instance.A.dpi");
     }},
    {"setUnknown", logged::keyUnknown("vtr.nothing"),
     [](ConfStore& s) { confSetString(s, "vtr.nothing", "x"); }},
    {"setWrongType", wrongType("vtr.locale"),
     [](ConfStore& s) { confSetBool(s, "vtr.locale", true); }},
    {"setDeprecatedThatMayBeRead", kDeprecated,
     [](ConfStore& s) {
         s.allowDeprecated = true;
         confSetString(s, "vtr.old", "x");
     }},
    {"restoreUnknown", "", [](ConfStore& s) { confRestorePropDefault(s, "vtr.nothing"); }},
    {"restoreShort", "", [](ConfStore& s) { confRestorePropDefault(s, "vt"); }},
};

CASE_PER_ROW(ConfFatalTest, ::testing::Test, kFatalCalls);

// Expects the break of a call whose log shows functions.
void expectBreakShown(const std::string& call, const std::string& logging, const std::string& line,
                      const std::string& breaking) {
    expectConfBreak("confFatal", {call, "shown"},
                    "E CONF " + logging + " " + logged::messageOf(line), breaking);
}

class ConfRareTest : public ConfTest {
 protected:
    ConfCatalogue rare = rareCatalogue();
    ConfStore rareStore{rare, confDiskFiles()};
};

}  // namespace

// Makes one of the calls. The log is on standard output: "shown" adds the functions to its lines,
// "silent" switches it off.
SUBPROCESS(confFatal) {
    const TempFolder folder;
    const std::string path =
        folder.write("c",
                     "vtr.feature.rooting=\"maybe\"\nvtr.mem_pcd_pclimit=\"abc\"\nvtr.big=\"abc\"\n"
                     "vtr.instance.A.dpi=\"1\"\n");
    if (xplLibInit(nullptr, "") != 0) return 1;
    std::optional<LogOff> off;
    if (arguments.back() == "silent") off.emplace();
    const ConfCatalogue catalogue = rareCatalogue();
    ConfStore store(catalogue, confDiskFiles());
    if (confLibInit(store, path, /*allowDeprecated=*/false) != 0) return 2;
    xlogSetDisplay(false, arguments.back() == "shown", false);
    for (const FatalCall& call : kFatalCalls) {
        if (call.name == arguments[0]) call.run(store);
    }
    return 0;
}

TEST_P(ConfFatalTest, EndsTheProcess) {
    expectConfBreak("confFatal", {GetParam().name}, GetParam().line);
}

TEST(ConfFatalFunction, ABadNumberIsLoggedByTheFunctionThatReadsIt) {
    expectBreakShown("getBadNumber", "confGetI32",
                     logged::numberInvalid("vtr.mem_pcd_pclimit", "abc"), "confGetI32");
    expectBreakShown("getBadLongNumber", "confGetI64", kBadLongNumber, "confGetI64");
}

TEST(ConfFatalFunction, ABadBoolIsLoggedByTheFunctionThatReadsIt) {
    expectBreakShown("getBadBool", "confGetBool",
                     logged::boolInvalid("vtr.feature.rooting", "maybe"), "confGetBool");
}

TEST(ConfFatalFunction, AKeyThatIsRefusedIsLoggedByTheValidation) {
    const std::string line = logged::keyUnknown("vtr.nothing");
    expectBreakShown("getUnknown", "confValidateProp", line, "confGetStringInternal");
    expectBreakShown("setUnknown", "confValidateProp", line, "confSetStringInternal");
}

TEST_F(ConfRareTest, ALongNumberKeepsItsBits) {
    load(rareStore, "vtr.big=\"9000000000\"\n");
    EXPECT_EQ(confGetI64(rareStore, "vtr.big"), 9000000000);
    EXPECT_EQ(confSetI64(rareStore, "vtr.big", INT64_MIN), 0);
    EXPECT_EQ(confGetStringInternal(rareStore, "vtr.big", ConfType::I64), "-9223372036854775808");
    EXPECT_EQ(confGetI64(rareStore, "vtr.big"), INT64_MIN);
}

TEST_F(ConfRareTest, ADeprecatedPropertyIsReadWhereItIsAllowed) {
    load(rareStore, "vtr.old=\"x\"\n", /*allowDeprecated=*/true);
    EXPECT_EQ(confGetString(rareStore, "vtr.old"), "x");
}

TEST_F(ConfRareTest, ADeprecatedPropertyIsRefusedUnlessAllowed) {
    EXPECT_TRUE(confValidateProp(rareStore, "vtr.old", ConfType::String, true));
    EXPECT_FALSE(confValidateProp(rareStore, "vtr.old", ConfType::String, false));
    EXPECT_EQ(log.texts(), Lines{kDeprecated});
}

TEST_F(ConfRareTest, ValidationLogsUnderItsOwnName) {
    EXPECT_FALSE(confValidateProp(rareStore, "vtr.nothing", ConfType::String, false));
    EXPECT_FALSE(confValidateProp(rareStore, "vtr.instance.A.dpi", ConfType::String, false));
    EXPECT_FALSE(confValidateProp(rareStore, "vtr.old", ConfType::String, false));
    EXPECT_EQ(log.texts(), (Lines{logged::keyUnknown("vtr.nothing"),
                                  wrongType("vtr.instance.A.dpi", "iprop"), kDeprecated}));
    for (const LogCapture::Line& line : log.lines()) EXPECT_EQ(line.function, "confValidateProp");
}
