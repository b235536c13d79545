#include "ConfFixture.h"
#include "support/LogLines.h"
#include "support/Rows.h"
#include "support/Subprocess.h"
#include "xpl/Xpl.h"

namespace {

constexpr const char* kTwoInstances =
    "vtr.instance.A.display_name=\"Ünïcode 日本\"\nvtr.instance.A.dpi=\"320\"\n"
    "vtr.instance.A.grm_ignored_rules=\"x,y\"\nvtr.instance.B.dpi=\"160\"\n"
    "vtr.instance.B.ram=\"2048\"\n";

class ConfSomeInstancesTest : public ConfTest {
 protected:
    template <typename IsWanted>
    Lines keysWhere(IsWanted isWanted) {
        const XsharedGuard reading(store.viewLock);
        Lines keys;
        store.view.forEach(
            [&](std::string_view prefix, std::string_view name, const ConfValue& value) {
                if (isWanted(value)) keys.push_back(std::string(prefix).append(name));
            });
        return keys;
    }

    Lines pendingKeys() {
        return keysWhere([](const ConfValue& value) { return value.staged != nullptr; });
    }

    Lines removedKeys() {
        return keysWhere([](const ConfValue& value) { return value.isRemoved; });
    }

    // The keys of an instance that begin with `start`.
    Lines keysOf(const std::string& instance, const std::string& start = "") const {
        Lines keys;
        for (const auto& [name, property] : catalogue.instances()) {
            if (name.rfind(start, 0) == 0) keys.push_back("vtr.instance." + instance + "." + name);
        }
        return keys;
    }

    // The size that a dump needs, with its NUL.
    std::uint32_t dumpSize() {
        std::uint32_t size = 0;
        EXPECT_EQ(confGetInstanceAllConfigs(store, nullptr, 0, size), XERR_FBIG);
        return size;
    }

    std::string dump() {
        std::uint32_t size = dumpSize();
        std::string text(size, '?');
        EXPECT_EQ(confGetInstanceAllConfigs(store, text.data(), size, size), 0);
        EXPECT_EQ(text.back(), '\0');
        text.pop_back();
        return text;
    }
};

// The same with the file kTwoInstances.
class ConfInstancesTest : public ConfSomeInstancesTest {
 protected:
    void SetUp() override { given(kTwoInstances); }
};

// Expected entries of its file.
Entries twoInstances() {
    Entries entries = globalDefaults();
    entries["vtr.instance.A.display_name"] = "Ünïcode 日本";
    entries["vtr.instance.A.dpi"] = "320";
    entries["vtr.instance.A.grm_ignored_rules"] = "x,y";
    entries["vtr.instance.B.dpi"] = "160";
    entries["vtr.instance.B.ram"] = "2048";
    addInstanceDefaults(entries, "A");
    addInstanceDefaults(entries, "B");
    return entries;
}

// A catalogue with one property per scope, whose names have these lengths.
ConfCatalogue catalogueOf(std::size_t globalLength, std::size_t instanceLength) {
    ConfCatalogue catalogue;
    catalogue.registerGlobal(std::string(globalLength, 'g'), {ConfType::String, ""});
    catalogue.registerInstance(std::string(instanceLength, 'i'), {ConfType::String, ""});
    return catalogue;
}

// A dump that ends the process, of a file with the current instance A.
struct FatalDump {
    const char* name;
    std::size_t globalLength;  // of the catalogue's names; 0: the product's catalogue
    std::size_t instanceLength;
    std::string key;  // the stored one
    std::string value;
    std::string otherLine;
};

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

const FatalDump kFatalDumps[] = {
    {"AGlobalKeyOf32Bytes", 28, 1, "vtr." + repeated("g", 28), "x", "vtr.instance.A.i=\"y\"\n"},
    {"AnInstanceKeyThatShowsWith32BytesNamesTheStoredKey", 1, 28,
     "vtr.instance.A." + repeated("i", 28), "y", "vtr.g=\"x\"\n"},
    {"AGlobalValueOf92Bytes", 0, 0, "vtr.shared_folders", repeated("v", 92),
     "vtr.instance.A.dpi=\"320\"\n"},
    {"AnInstanceValueOf92BytesNamesTheStoredKey", 0, 0, "vtr.instance.A.display_name",
     repeated("ü", 46), ""},
};

CASE_PER_ROW(ConfFatalDumpTest, ::testing::Test, kFatalDumps);

}  // namespace

// Another program that reads the file. Prints the instances with their resolutions.
SUBPROCESS(readsTheInstances) {
    const LogCapture quiet;
    ConfStore& store = confStore();
    if (confLibInit(store, arguments[0], false) != 0) return 1;
    for (const std::string& name : confGetInstances(store)) {
        std::printf("%s %d\n", name.c_str(), confGetI32(store, "vtr.instance." + name + ".dpi"));
    }
    return 0;
}

TEST_F(ConfInstancesTest, ACopyStagesEveryValueAndMakesTheTargetKnown) {
    const std::size_t before = committedCount();
    EXPECT_EQ(confCopyInstance(store, "A", "New"), 0);
    EXPECT_EQ(pendingKeys(), keysOf("New"));
    EXPECT_EQ(committedCount(), before) << "no defaults are filled in";
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B", "New"}));
    EXPECT_EQ(confGetI32(store, "vtr.instance.New.dpi"), 320);
    EXPECT_EQ(confGetString(store, "vtr.instance.New.display_name"), "Ünïcode 日本");
    EXPECT_EQ(confGetI32(store, "vtr.instance.New.max_fps"), 60);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(ConfInstancesTest, ACopyReachesTheFileWithTheCommit) {
    ASSERT_EQ(confCopyInstance(store, "A", "Nougat64_日本"), 0);
    EXPECT_EQ(file(), kTwoInstances);
    ASSERT_EQ(confCommit(store), 0);
    Entries expected = twoInstances();
    addInstanceCopy(expected, "A", "Nougat64_日本");
    EXPECT_EQ(file(), fileText(expected));
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"})) << "missing until the next load";
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B", "Nougat64_日本"}));
    EXPECT_EQ(confGetI32(store, "vtr.instance.Nougat64_日本.dpi"), 320);
}

TEST_F(ConfInstancesTest, AnotherProgramSeesTheCopyAfterTheCommitOnly) {
    ASSERT_EQ(confCopyInstance(store, "A", "New"), 0);
    EXPECT_EQ(subprocessOutput("readsTheInstances", {path()}), "A 320\nB 160\n");
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_EQ(subprocessOutput("readsTheInstances", {path()}), "A 320\nB 160\nNew 320\n");
}

TEST_F(ConfInstancesTest, AnUnknownSourceIsLoggedAndNothingIsStaged) {
    EXPECT_EQ(confCopyInstance(store, "Z", "New"), -1);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{logged::instanceUnknown("Z")});
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"}));
    set("vtr.guid", "x");
    EXPECT_EQ(confCommit(store), 0) << "the lock was released";
}

TEST_F(ConfInstancesTest, TheSourcesPendingChangesAreNotCopied) {
    set("vtr.instance.A.dpi", 999);
    ASSERT_EQ(confCopyInstance(store, "A", "New"), 0);
    EXPECT_EQ(confGetI32(store, "vtr.instance.New.dpi"), 320);
    EXPECT_EQ(confGetI32(store, "vtr.instance.A.dpi"), 999);
}

TEST_F(ConfInstancesTest, ACopyOfAnUncommittedInstanceHasTheDefaults) {
    set("vtr.instance.Fresh.dpi", 999);
    ASSERT_EQ(confCopyInstance(store, "Fresh", "New"), 0);
    EXPECT_EQ(confGetI32(store, "vtr.instance.New.dpi"), 240);
}

TEST_F(ConfSomeInstancesTest, DeprecatedKeysAreNotCopied) {
    ConfCatalogue old;
    old.registerInstance("kept", {ConfType::String, "k"});
    old.registerInstance("old", deprecatedText("o"));
    ConfStore other(old, confDiskFiles());
    load(other, "vtr.instance.A.kept=\"1\"\nvtr.instance.A.old=\"2\"\n", /*allowDeprecated=*/true);
    ASSERT_EQ(confCopyInstance(other, "A", "New"), 0);
    EXPECT_TRUE(confIsPropPending(other, "vtr.instance.New.kept"));
    EXPECT_FALSE(confIsPropPending(other, "vtr.instance.New.old"));
    EXPECT_EQ(confGetString(other, "vtr.instance.New.old"), "");
    ASSERT_EQ(confCommit(other), 0);
    EXPECT_EQ(file(), "vtr.instance.A.kept=\"1\"\nvtr.instance.New.kept=\"1\"\n");
}

TEST_F(ConfInstancesTest, AnExistingTargetIsOverwrittenWhereTheSourceHasAKey) {
    {
        const std::lock_guard<XsharedMutex> changing(store.viewLock);
        store.view.value(confFindKey(catalogue, "vtr.instance.A.ram")).erase();
    }
    set("vtr.instance.B.dpi", 999);
    ASSERT_EQ(confCopyInstance(store, "A", "B"), 0);
    EXPECT_EQ(confGetI32(store, "vtr.instance.B.dpi"), 320) << "a pending change too";
    EXPECT_FALSE(confIsPropPending(store, "vtr.instance.B.ram"));
    EXPECT_EQ(confGetI32(store, "vtr.instance.B.ram"), 2048);
    EXPECT_EQ(pendingKeys().size(), instanceCount() - 1);
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_EQ(committed("vtr.instance.B.dpi"), "320");
    EXPECT_EQ(committed("vtr.instance.B.ram"), "2048");
}

TEST_F(ConfInstancesTest, ACopyOntoItselfTakesItsPendingChangesBack) {
    set("vtr.instance.A.dpi", 999);
    ASSERT_EQ(confCopyInstance(store, "A", "A"), 0);
    EXPECT_EQ(confGetI32(store, "vtr.instance.A.dpi"), 320);
    EXPECT_EQ(pendingKeys(), keysOf("A"));
}

TEST_F(ConfInstancesTest, ATargetThatIsRemovedButNotCommittedStaysRemoved) {
    confDeleteInstance(store, "B");
    ASSERT_EQ(confCopyInstance(store, "A", "B"), 0);
    EXPECT_EQ(removedKeys(), keysOf("B"));
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"}));
    ASSERT_EQ(confCommit(store), 0);
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store), Names{"A"});
}

TEST_F(ConfSomeInstancesTest, InstancesWithACommonPrefixAreSeparate) {
    given(
        "vtr.instance.N.dpi=\"1\"\nvtr.instance.N_1.dpi=\"2\"\n"
        "vtr.instance.N_10.dpi=\"3\"\n");
    ASSERT_EQ(confCopyInstance(store, "N_1", "New"), 0);
    EXPECT_EQ(pendingKeys(), keysOf("New"));
    EXPECT_EQ(confGetI32(store, "vtr.instance.New.dpi"), 2);
    confDiscardChanges(store);
    confDeleteInstance(store, "N_1");
    EXPECT_EQ(removedKeys(), keysOf("N_1"));
    EXPECT_EQ(confGetInstances(store), (Names{"N", "N_10", "New"}));
}

TEST_F(ConfInstancesTest, ATargetWhoseKeysCouldNotBeReadBackIsRefused) {
    const std::string names[] = {"New.1", ".", "a=b", "a\nb"};
    for (const std::string& name : names) {
        log.clear();
        EXPECT_FALSE(confIsInstanceName(name));
        EXPECT_EQ(confCopyInstance(store, "A", name), XERR_INVAL);
        EXPECT_EQ(log.texts(XLOG_VERBOSE),
                  Lines{"E CONF confCopyInstance: invalid instance name " + name});
    }
    EXPECT_EQ(confCopyInstance(store, "A", std::string("a\0b", 3)), XERR_INVAL);
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"}));
    for (const char* name : {"Nougat64_1", "a b", "日本", "\"", ""}) {
        EXPECT_TRUE(confIsInstanceName(name)) << name;
        EXPECT_EQ(confCopyInstance(store, "A", name), 0);
    }
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(confReload(store), 0) << "what was written reads back";
    EXPECT_EQ(confGetInstances(store).size(), 7u);
}

TEST_F(ConfInstancesTest, ARemovalStagesEveryKeyAndForgetsTheInstance) {
    set("vtr.instance.A.dpi", 999);
    set("vtr.instance.B.dpi", 111);
    EXPECT_EQ(confDeleteInstance(store, "A"), 0);
    EXPECT_EQ(removedKeys(), keysOf("A"));
    EXPECT_EQ(pendingKeys(), Lines{"vtr.instance.B.dpi"});
    EXPECT_EQ(confGetInstances(store), Names{"B"});
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "320") << "until the commit";
    EXPECT_EQ(confSetCurrentInstance(store, "A"), -1);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{logged::instanceUnknown("A")});
}

TEST_F(ConfInstancesTest, ARemovalReachesTheFileWithTheCommit) {
    confDeleteInstance(store, "A");
    ASSERT_EQ(confCommit(store), 0);
    expectFile({{"vtr.instance.B.dpi", "160"}, {"vtr.instance.B.ram", "2048"}});
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"})) << "listed until the next load";
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store), Names{"B"});
    EXPECT_EQ(committed("vtr.instance.A.dpi"), std::nullopt);
}

TEST_F(ConfInstancesTest, AnotherProgramSeesTheRemovalAfterTheCommitOnly) {
    confDeleteInstance(store, "A");
    EXPECT_EQ(subprocessOutput("readsTheInstances", {path()}), "A 320\nB 160\n");
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_EQ(subprocessOutput("readsTheInstances", {path()}), "B 160\n");
}

TEST_F(ConfInstancesTest, RemovingAnUnknownInstanceStagesNothing) {
    EXPECT_EQ(confDeleteInstance(store, "Z"), 0);
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(ConfInstancesTest, ANameWithADotIsAPrefixOfKeys) {
    EXPECT_EQ(confDeleteInstance(store, "A.status"), 0);
    ASSERT_FALSE(removedKeys().empty());
    EXPECT_EQ(removedKeys(), keysOf("A", "status."));
}

TEST_F(ConfInstancesTest, AnInstanceWithADotInItsNameIsRemovedWhole) {
    ASSERT_EQ(confAddInstance(store, "A.B"), 0);
    EXPECT_EQ(committed("vtr.instance.A.B.dpi"), "240");
    ASSERT_EQ(confDeleteInstance(store, "A.B"), 0);
    EXPECT_EQ(removedKeys(), keysOf("A.B"));
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(committed("vtr.instance.A.B.dpi"), std::nullopt);
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "320");
}

TEST_F(ConfInstancesTest, AKeyThatIsSetAfterTheRemovalStays) {
    confDeleteInstance(store, "A");
    set("vtr.instance.A.dpi", 480);
    EXPECT_EQ(removedKeys().size(), instanceCount() - 1);
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_TRUE(hasLine("vtr.instance.A.dpi=\"480\""));
    EXPECT_EQ(file().find("vtr.instance.A.display_name"), std::string::npos);
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetString(store, "vtr.instance.A.display_name"), "Vantrel");
}

TEST_F(ConfInstancesTest, ACopyThatIsNotCommittedSurvivesItsRemoval) {
    ASSERT_EQ(confCopyInstance(store, "A", "New"), 0);
    confDeleteInstance(store, "New");
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"}));
    EXPECT_EQ(pendingKeys(), keysOf("New")) << "only committed keys are removed";
}

TEST_F(ConfInstancesTest, DiscardingARemovalBringsTheInstanceBackWithTheNextLoad) {
    confDeleteInstance(store, "A");
    confDiscardChanges(store);
    EXPECT_EQ(confGetI32(store, "vtr.instance.A.dpi"), 320);
    EXPECT_EQ(confGetInstances(store), Names{"B"});
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"}));
}

TEST_F(ConfInstancesTest, TheDumpHasTheCurrentInstancesAndTheGlobalSettings) {
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    EXPECT_EQ(dump(), dumpText(twoInstances(), "A"));
    ASSERT_EQ(confSetCurrentInstance(store, "B"), 0);
    EXPECT_EQ(dump(), dumpText(twoInstances(), "B"));
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(ConfInstancesTest, TheInstancesLinesAreOneBlockAmongTheGlobalOnes) {
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    const std::string text = dump();
    EXPECT_NE(text.find("\nvtr.installed_images=\nvtr.abi_list=\n"), std::string::npos);
    EXPECT_NE(text.find("\nvtr.status.adb_port=\nvtr.locale=\n"), std::string::npos);
    EXPECT_NE(text.find("\nvtr.dpi=320\n"), std::string::npos);
    EXPECT_EQ(text.find("grm_ignored_rules"), std::string::npos);
    EXPECT_EQ(text.find("vtr.instance."), std::string::npos);
    const std::string end = "\n" + kDumpEnd;
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(ConfInstancesTest, WithoutACurrentInstanceTheDumpHasTheGlobalSettingsOnly) {
    EXPECT_EQ(dump(), dumpText(twoInstances(), ""));
}

TEST_F(ConfInstancesTest, TheDumpShowsCommittedValues) {
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    set("vtr.instance.A.dpi", 999);
    set("vtr.guid", "pending");
    EXPECT_EQ(dump(), dumpText(twoInstances(), "A"));
    confDeleteInstance(store, "A");
    EXPECT_EQ(dump(), dumpText(twoInstances(), "A")) << "until the commit";
    ASSERT_EQ(confCommit(store), 0);
    Entries expected = twoInstances();
    expected["vtr.guid"] = "pending";
    EXPECT_EQ(dump(), dumpText(expected, ""));
}

TEST_F(ConfInstancesTest, ABufferOneByteTooSmallIsLeftAlone) {
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    const std::string text = dumpText(twoInstances(), "A");
    const auto needed = static_cast<std::uint32_t>(text.size() + 1);
    std::string buffer(needed + 10, '?');
    std::uint32_t size = 0;
    EXPECT_EQ(confGetInstanceAllConfigs(store, buffer.data(), needed - 1, size), XERR_FBIG);
    EXPECT_EQ(size, needed);
    EXPECT_EQ(buffer, std::string(needed + 10, '?'));
    size = 0;
    EXPECT_EQ(confGetInstanceAllConfigs(store, buffer.data(), needed, size), 0);
    EXPECT_EQ(size, needed);
    EXPECT_EQ(buffer, text + '\0' + std::string(10, '?'));
}

TEST_F(ConfInstancesTest, ALargerBufferKeepsItsRest) {
    const std::string text = dumpText(twoInstances(), "");
    std::string buffer(text.size() + 100, '?');
    std::uint32_t size = 0;
    EXPECT_EQ(confGetInstanceAllConfigs(store, buffer.data(),
                                        static_cast<std::uint32_t>(buffer.size()), size),
              0);
    EXPECT_EQ(size, text.size() + 1);
    EXPECT_EQ(buffer, text + '\0' + std::string(99, '?'));
}

TEST_F(ConfInstancesTest, ANullBufferOfNoSizeAsksForTheSize) {
    EXPECT_EQ(dumpSize(), dumpText(twoInstances(), "").size() + 1);
}

TEST_F(ConfInstancesTest, ANullBufferThatClaimsRoomIsRefused) {
    std::uint32_t size = 7;
    EXPECT_EQ(confGetInstanceAllConfigs(store, nullptr, 1 << 20, size), XERR_INVAL);
    EXPECT_EQ(size, 7u);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{"E CONF confGetInstanceAllConfigs: buffer is null"});
}

TEST_F(ConfSomeInstancesTest, AKeyOf31AndAValueOf91BytesAreDumped) {
    const ConfCatalogue longest = catalogueOf(27, 27);
    ConfStore other(longest, confDiskFiles());
    const std::string global = "vtr." + std::string(27, 'g');
    const std::string property(27, 'i');
    const std::string value(91, 'v');
    load(other, global + "=\"" + value + "\"\nvtr.instance.A." + property + "=\"" + value + "\"\n");
    ASSERT_EQ(confSetCurrentInstance(other, "A"), 0);
    char buffer[1024];
    std::uint32_t size = 0;
    ASSERT_EQ(confGetInstanceAllConfigs(other, buffer, sizeof buffer, size), 0);
    EXPECT_EQ(std::string(buffer, size - 1),
              global + "=" + value + "\nvtr." + property + "=" + value + "\n" + kDumpEnd);
}

TEST_F(ConfSomeInstancesTest, ExcludedValuesAndOtherInstancesMayBeLonger) {
    const std::string value(92, 'v');
    given("vtr.media_folder=\"" + value + "\"\nvtr.instance.A.grm_ignored_rules=\"" + value +
          "\"\nvtr.instance.B.display_name=\"" + value + "\"\n");
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    EXPECT_EQ(dump().find(value), std::string::npos);
    EXPECT_EQ(confKeysTooLongForDump(store), Lines{});
}

TEST_F(ConfSomeInstancesTest, TheKeysThatAreTooLongForTheDumpAreListed) {
    const std::string tooLong(92, 'v');
    const std::string longest(91, 'v');
    given("vtr.guid=\"" + longest + "\"\nvtr.shared_folders=\"" + tooLong +
          "\"\nvtr.instance.A.display_name=\"" + tooLong + "\"\n");
    EXPECT_EQ(confKeysTooLongForDump(store), Lines{"vtr.shared_folders"});
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    EXPECT_EQ(confKeysTooLongForDump(store),
              (Lines{"vtr.instance.A.display_name", "vtr.shared_folders"}));

    const ConfCatalogue longKeys = catalogueOf(28, 28);
    ConfStore other(longKeys, confDiskFiles());
    ASSERT_EQ(confLibInit(other, folder.write("other.conf", ""), false), 0);
    EXPECT_EQ(confKeysTooLongForDump(other), Lines{"vtr." + std::string(28, 'g')});
}

// Dumps instance A of the file. The log is on standard output; "silent" switches it off.
SUBPROCESS(dumps) {
    for (const FatalDump& row : kFatalDumps) {
        if (row.name != arguments[0]) continue;
        const TempFolder folder;
        if (xplLibInit(nullptr, "") != 0) return 1;
        std::optional<LogOff> off;
        if (arguments.back() == "silent") off.emplace();
        const ConfCatalogue catalogue = row.globalLength == 0
                                            ? confProductCatalogue()
                                            : catalogueOf(row.globalLength, row.instanceLength);
        ConfStore store(catalogue, confDiskFiles());
        const std::string text = row.key + "=\"" + row.value + "\"\n" + row.otherLine;
        if (confLibInit(store, folder.write("c", text), false) != 0) return 2;
        if (confSetCurrentInstance(store, "A") != 0) return 3;
        std::uint32_t size = 0;
        return confGetInstanceAllConfigs(store, nullptr, 0, size);
    }
    return 4;
}

TEST_P(ConfFatalDumpTest, EndsTheProcess) {
    expectConfBreak("dumps", {GetParam().name},
                    "E CONF Invalid conf entry. Key = '" + GetParam().key + "', value = '" +
                        GetParam().value + "'");
}

SUBPROCESS(readsARemovedKey) {
    const TempFolder folder;
    if (xplLibInit(nullptr, "") != 0) return 1;
    ConfStore& store = confStore();
    const std::string path = folder.write("c", "vtr.instance.A.dpi=\"320\"\n");
    if (confLibInit(store, path, false) != 0) return 2;
    confDeleteInstance(store, "A");
    return confGetI32(store, "vtr.instance.A.dpi");
}

TEST(ConfInstancesFatalTest, ReadingARemovedKeyBeforeTheCommit) {
    expectConfBreak("readsARemovedKey", {}, logged::keyRemoved("vtr.instance.A.dpi"));
}

TEST_F(ConfSomeInstancesTest, UndeclaredKeysAreNotDumped) {
    given("vtr.instance.A.dpi=\"1\"\n");
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    const std::uint32_t before = dumpSize();
    ASSERT_EQ(confSetStringInternal(store, "foreign", ConfType::None, "x"), 0);
    ASSERT_EQ(confSetStringInternal(store, "vtr.instance.A.foreign", ConfType::None, "x"), 0);
    static_cast<void>(confCommit(store));  // merges the two, and fails to load them again
    EXPECT_EQ(dumpSize(), before);
}
