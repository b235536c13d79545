#include <regex>

#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/SystemAbilities.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/Threads.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kConf{XlogTag::CONF, "Source\\conf\\Conf"};
constexpr XlogModule kMem{XlogTag::XMEM, "Source/xpl/Xmem"};

// Starts logging into a file and reads it back.
class XlogTest : public ::testing::Test {
 protected:
    void SetUp() override { ASSERT_EQ(xlogLibInit(nullptr, folder / "log"), 0); }
    void TearDown() override {
        xlogSetClientName("");
        xlogSetDisplay(false, false, false);
    }

    Lines messages() const { return logMessages(folder.read("log")); }

    TempFolder folder;
};

constexpr const char* kNeedsAtomicAppends =
    "needs Windows, where writes to the end of a file are atomic";

struct TagName {
    XlogTag tag;
    const char* name;
};

// In the order of their numbers, which the product's other programs share.
constexpr TagName kTags[] = {
#define TAG(name) \
    { XlogTag::name, #name }
    TAG(AGA),   TAG(APPC),   TAG(AUD),   TAG(BRIDGE), TAG(CAM),  TAG(CLD),   TAG(CONF),
    TAG(CSM),   TAG(DCRD),   TAG(GCALL), TAG(GR),     TAG(GRM),  TAG(HCALL), TAG(HST),
    TAG(IMAP),  TAG(IMGD),   TAG(INP),   TAG(IPC),    TAG(KMM),  TAG(MIM),   TAG(MNS),
    TAG(PGA),   TAG(PGAIPC), TAG(PLR),   TAG(SER),    TAG(UI),   TAG(UTL),   TAG(VDES),
    TAG(VMMGR), TAG(WERH),   TAG(XCOND), TAG(XFILE),  TAG(XLIB), TAG(XLOCK), TAG(XLOG),
    TAG(XMEM),  TAG(XMUTEX), TAG(XPROC), TAG(XSOCK),  TAG(XSTR), TAG(XTHR),  TAG(XTIME),
    TAG(XTIMER)
#undef TAG
};

bool enabled(XlogTag tag, std::int32_t level) { return xlogIsEnabled({tag, ""}, level); }

std::string greeting;

std::int32_t enableAll(std::int32_t, std::int32_t) { return 1; }

std::int32_t keepGreeting(std::int32_t level, std::int32_t tag, const char*, const char*,
                          std::int32_t, const char* format, ...) {
    greeting = std::to_string(level) + " " + std::to_string(tag) + " " + format;
    return 0;
}

// How many different lines a log holds.
std::size_t differentLines(const Lines& lines) {
    return std::set<std::string>(lines.begin(), lines.end()).size();
}

}  // namespace

TEST_F(XlogTest, EveryTagStartsAtInformationAndMemoryAtDebug) {
    for (const auto& [tag, name] : kTags) {
        EXPECT_TRUE(enabled(tag, XLOG_INFORMATION)) << name;
        EXPECT_EQ(enabled(tag, XLOG_DEBUG), tag == XlogTag::XMEM) << name;
    }
}

TEST_F(XlogTest, TagsHaveTheNumbersThatOtherProgramsUse) {
    static_assert(std::size(kTags) == 43);
    Lines expected;
    for (int number = 0; number < 43; ++number) {
        EXPECT_EQ(static_cast<int>(kTags[number].tag), number) << kTags[number].name;
        xlogGetLogger().print(XLOG_INFORMATION, number, "f", "g", 1, "number %d", number);
        expected.push_back(std::string("I ") + kTags[number].name + "  number " +
                           std::to_string(number));
    }
    EXPECT_EQ(messages(), expected);
}

TEST_F(XlogTest, EveryTagsLevelIsSetByItsName) {
    ASSERT_EQ(xlogSetLevels("*:E"), 0);
    for (const TagName& one : kTags) {
        ASSERT_EQ(xlogSetLevels(std::string(one.name) + ":V"), 0);
        for (const TagName& other : kTags) {
            EXPECT_EQ(enabled(other.tag, XLOG_WARNING), other.tag == one.tag) << other.name;
        }
        ASSERT_EQ(xlogSetLevels(std::string(one.name) + ":E"), 0);
    }
}

TEST_F(XlogTest, ALevelSpecificationIsLoggedAtDebugLevel) {
    EXPECT_EQ(xlogSetLevels("XLOG:D"), 0) << "off until now";
    EXPECT_EQ(xlogSetLevels("*:W  CONF:Q"), XERR_INVAL);
    EXPECT_EQ(xlogSetLevels("*:I"), 0);
    EXPECT_EQ(messages(), Lines{"D XLOG  Change log levels with: *:W  CONF:Q"});
}

// The previous logger stays, and decides which lines of the start are shown.
TEST_F(XlogTest, TheStartIsLoggedAtDebugLevel) {
    const LogCapture log;
    ASSERT_EQ(xlogLibInit(nullptr, folder / "log"), 0);
    EXPECT_EQ(log.texts(XLOG_VERBOSE),
              (Lines{"D XLOG Change log levels with: *:I XMEM:D", "D XLOG xlog lib init done."}));
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(log.lines()[0].function, "xlogSetLevels");
    EXPECT_EQ(log.lines()[1].function, "xlogLibInit");
}

TEST_F(XlogTest, OnlyTheFirstLetterOfALevelCounts) {
    EXPECT_EQ(xlogSetLevels("CONF:Debug"), 0);
    EXPECT_TRUE(enabled(XlogTag::CONF, XLOG_DEBUG));
    EXPECT_FALSE(enabled(XlogTag::CONF, XLOG_VERBOSE));
    EXPECT_FALSE(enabled(XlogTag::UTL, XLOG_DEBUG));
    EXPECT_EQ(xlogSetLevels("CONF:Ixx"), 0);
    EXPECT_FALSE(enabled(XlogTag::CONF, XLOG_DEBUG));
}

TEST_F(XlogTest, AStarMeansEveryTag) {
    EXPECT_EQ(xlogSetLevels("*:V"), 0);
    for (const auto& [tag, name] : kTags) EXPECT_TRUE(enabled(tag, XLOG_VERBOSE)) << name;
    EXPECT_EQ(xlogSetLevels("*:E"), 0);
    EXPECT_FALSE(enabled(XlogTag::AGA, XLOG_WARNING));
    EXPECT_TRUE(enabled(XlogTag::AGA, XLOG_ERROR));
}

TEST_F(XlogTest, LaterItemsOverrideEarlierOnes) {
    EXPECT_EQ(xlogSetLevels("CONF:V *:W CONF:D"), 0);
    EXPECT_TRUE(enabled(XlogTag::CONF, XLOG_DEBUG));
    EXPECT_FALSE(enabled(XlogTag::UTL, XLOG_INFORMATION));
}

TEST_F(XlogTest, AnUnknownTagChangesNothing) {
    EXPECT_EQ(xlogSetLevels("xmem:V Conf:V CON:V"), 0);
    EXPECT_FALSE(enabled(XlogTag::XMEM, XLOG_VERBOSE));
    EXPECT_FALSE(enabled(XlogTag::CONF, XLOG_DEBUG));
}

TEST_F(XlogTest, AMalformedItemStopsWithTheOnesBeforeItApplied) {
    for (const char* item : {"XMEM", "XMEM:Q", "XMEM:", "XMEM:D:V", ":", "XMEM:d"}) {
        ASSERT_EQ(xlogSetLevels("*:I"), 0);
        EXPECT_EQ(xlogSetLevels(std::string("CONF:D ") + item + " UTL:D"), XERR_INVAL) << item;
        EXPECT_TRUE(enabled(XlogTag::CONF, XLOG_DEBUG)) << item;
        EXPECT_FALSE(enabled(XlogTag::UTL, XLOG_DEBUG)) << item;
    }
}

TEST_F(XlogTest, EmptyItemsAreSkipped) {
    EXPECT_EQ(xlogSetLevels(""), 0);
    EXPECT_EQ(xlogSetLevels("  CONF:D   UTL:D "), 0);
    EXPECT_TRUE(enabled(XlogTag::CONF, XLOG_DEBUG));
    EXPECT_TRUE(enabled(XlogTag::UTL, XLOG_DEBUG));
}

TEST_F(XlogTest, LinesCarryTagClientAndLevel) {
    xlogSetClientName("Helper_bridge");
    XLOG_E(kConf, "error %d", 1);
    XLOG_W(kConf, "warning");
    XLOG_I(kConf, "information");
    XLOG_D(kConf, "not shown");
    XLOG_D(kMem, "debug");
    XLOG_V(kMem, "not shown");
    EXPECT_EQ(messages(),
              (Lines{"E CONF Helper_bridge error 1", "W CONF Helper_bridge warning",
                     "I CONF Helper_bridge information", "D XMEM Helper_bridge debug"}));
}

TEST_F(XlogTest, ArgumentsOfALevelThatIsOffAreNotEvaluated) {
    int calls = 0;
    const auto count = [&calls] { return ++calls; };
    XLOG_D(kConf, "%d", count());
    EXPECT_EQ(calls, 0);
    XLOG_I(kConf, "%d", count());
    EXPECT_EQ(calls, 1);
}

TEST_F(XlogTest, TheSwitchesShowTheBaseNameTheFunctionAndTheLine) {
    xlogSetDisplay(true, false, false);
    XLOG_I(kConf, "a");
    xlogSetDisplay(true, true, true);
    XLOG_I(kConf, "b");
    const int line = __LINE__ - 1;
    xlogSetDisplay(true, false, false);
    XLOG_I(kMem, "c");
    EXPECT_EQ(messages(),
              (Lines{"I CONF  Conf a", "I CONF  Conf TestBody " + std::to_string(line) + " | b",
                     "I XMEM  Source/xpl/Xmem c"}));
}

TEST_F(XlogTest, ALineNumberOfZeroIsShownToo) {
    xlogSetDisplay(false, false, true);
    xlogGetLogger().print(XLOG_INFORMATION, 6, "f", "g", 0, "message");
    xlogSetDisplay(false, false, false);
    xlogGetLogger().print(XLOG_INFORMATION, 6, "f", "g", 0, "without");
    EXPECT_EQ(messages(), (Lines{"I CONF  0 | message", "I CONF  without"}));
}

TEST_F(XlogTest, PrintReturnsTheBytesWritten) {
    const std::int32_t written =
        xlogGetLogger().print(XLOG_INFORMATION, 6, "f", "g", 1, "%s", "message");
    EXPECT_EQ(static_cast<std::size_t>(written), folder.read("log").size());
}

TEST_F(XlogTest, StartingAgainMovesToTheNewFile) {
    XLOG_I(kConf, "first");
    ASSERT_EQ(xlogLibInit(nullptr, folder / "other"), 0);
    XLOG_I(kConf, "second");
    EXPECT_EQ(messages(), Lines{"I CONF  first"});
    EXPECT_EQ(logMessages(folder.read("other")), Lines{"I CONF  second"});
}

TEST_F(XlogTest, SettingAnotherFileAppendsToIt) {
    folder.write("other", "kept\n");
    EXPECT_EQ(xlogSetFile(""), 0) << "an empty path changes nothing";
    XLOG_I(kConf, "first");
    EXPECT_EQ(xlogSetFile(folder / "other"), 0);
    XLOG_I(kConf, "second");
    EXPECT_EQ(messages(), Lines{"I CONF  first"});
    EXPECT_EQ(logMessages(folder.read("other")), (Lines{"kept", "I CONF  second"}));
}

TEST_F(XlogTest, AFileThatCannotBeOpenedLosesTheLines) {
    EXPECT_EQ(xlogSetFile(folder / "no/such/log"), XERR_NOENT);
    XLOG_I(kConf, "lost");
    EXPECT_EQ(folder.read("log"), "");
}

TEST_F(XlogTest, ThreadsDoNotMixWithinALine) {
    if (!appendsAreAtomic()) GTEST_SKIP() << kNeedsAtomicAppends;
    constexpr int kThreads = 4;
    constexpr int kLines = 250;
    inThreads(kThreads, [](int thread) {
        const std::string text(300, static_cast<char>('a' + thread));
        for (int i = 0; i < kLines; ++i) XLOG_I(kConf, "%d:%d %s", thread, i, text.c_str());
    });
    const Lines lines = messages();
    EXPECT_EQ(lines.size(), std::size_t{kThreads * kLines});
    EXPECT_EQ(differentLines(lines), lines.size());
    for (const std::string& line : lines) {
        ASSERT_EQ(line.rfind("I CONF  ", 0), 0u) << line;
        EXPECT_EQ(line.substr(line.size() - 300), std::string(300, line.back()));
    }
}

TEST_F(XlogTest, ALoggerOfTheHostReceivesEveryLine) {
    const LogCapture log;
    ASSERT_EQ(log.lines().size(), 0u);
    XLOG_V(kConf, "%s %d", "text", 5);
    ASSERT_EQ(log.lines().size(), 1u);
    const LogCapture::Line line = log.lines()[0];
    EXPECT_EQ(line.tag, XlogTag::CONF);
    EXPECT_EQ(line.level, XLOG_VERBOSE);
    EXPECT_EQ(line.file, "Source\\conf\\Conf");
    EXPECT_EQ(line.function, "TestBody");
    EXPECT_EQ(line.message, "text 5");
    EXPECT_EQ(folder.read("log"), "");
}

TEST(XlogStart, ALoggerOfTheHostReceivesTheStartAtDebugLevel) {
    const XlogLogger own{enableAll, keepGreeting};
    const XlogLogger before = xlogGetLogger();
    EXPECT_EQ(xlogLibInit(&own, "ignored"), 0);
    EXPECT_EQ(xlogLibInit(&before, ""), 0);
    EXPECT_EQ(greeting, "3 34 xlog inited using logger");
}

SUBPROCESS(logsBeforeStart) {
    XLOG_E(kConf, "an error");
    XLOG_W(kConf, "a warning");
    return 0;
}

TEST(XlogStart, BeforeTheStartOnlyErrorsAreLoggedWithoutATag) {
    const ChildResult result = runSubprocess("logsBeforeStart");
    EXPECT_EQ(result.status, 0u);
    ASSERT_EQ(logMessages(result.out).size(), 1u) << result.out;
    EXPECT_TRUE(
        std::regex_search(result.out, std::regex("^[0-9-]+ [0-9:.]+ \\d+ +\\d+ +E: an error")))
        << result.out;
}

// Logs this many lines to a file.
SUBPROCESS(logsLines) {
    if (xlogLibInit(nullptr, arguments[0]) != 0) return 1;
    const int count = std::stoi(arguments[2]);
    for (int i = 0; i < count; ++i) XLOG_I(kConf, "%s:%d", arguments[1].c_str(), i);
    return 0;
}

TEST(XlogStart, AnEmptyPathMeansStandardOutput) {
    const ChildResult result = runSubprocess("logsLines", {"", "to the console", "1"});
    EXPECT_EQ(result.status, 0u);
    EXPECT_NE(result.out.find(" CONF    I: to the console:0"), std::string::npos) << result.out;
}

TEST(XlogStart, AFileThatCannotBeOpenedIsFatalAndItsLineIsLost) {
    const TempFolder folder;
    const ChildResult result = runSubprocess("logsLines", {folder / "Logs/Player.log", "", "0"});
    EXPECT_EQ(result.status, kFatalStatus);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(folder.list(), Lines{});
}

SUBPROCESS(breaksFatally) {
    if (xlogLibInit(nullptr, arguments[0]) != 0) return 1;
    XLOG_FATAL(kMem);
}

TEST(XlogStart, TheFatalBreakLogsItsLocationAndEndsTheProcess) {
    const TempFolder folder;
    EXPECT_EQ(runSubprocess("breaksFatally", {folder / "log"}).status, kFatalStatus);
    const Lines lines = logMessages(folder.read("log"));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(logged::withoutNumber(lines[0]), logged::fatalBreak("XMEM", "Source/xpl/Xmem"));
    EXPECT_EQ(lines[0].substr(lines[0].size() - 11), " 0.000000()") << lines[0];
}

TEST(XlogStart, ProcessesShareALogWithoutLosingLines) {
    if (!appendsAreAtomic()) GTEST_SKIP() << kNeedsAtomicAppends;
    const TempFolder folder;
    std::vector<ChildProcess> children;
    for (const char* name : {"a", "b", "c", "d"}) {
        children.push_back(startSubprocess("logsLines", {folder / "log", name, "1000"}));
    }
    for (ChildProcess& child : children) EXPECT_EQ(child.finish().status, 0u);
    EXPECT_EQ(differentLines(logMessages(folder.read("log"))), 4000u);
}

TEST_F(XlogTest, UnknownNumbersOfTagsAndLevelsAreLogged) {
    const XlogLogger& logger = xlogGetLogger();
    EXPECT_EQ(logger.isEnabled(43, XLOG_ERROR), 0);
    EXPECT_EQ(logger.isEnabled(-1, XLOG_ERROR), 0);
    EXPECT_GT(logger.print(5, 43, "f", "g", 1, "line"), 0);
    EXPECT_NE(folder.read("log").find("         ?: line\n"), std::string::npos)
        << folder.read("log");
}
