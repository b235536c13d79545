#include <regex>

#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/SystemAbilities.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
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

    std::vector<std::string> messages() const { return logMessages(folder.read("log")); }

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
    {XlogTag::AGA, "AGA"},       {XlogTag::APPC, "APPC"},     {XlogTag::AUD, "AUD"},
    {XlogTag::BRIDGE, "BRIDGE"}, {XlogTag::CAM, "CAM"},       {XlogTag::CLD, "CLD"},
    {XlogTag::CONF, "CONF"},     {XlogTag::CSM, "CSM"},       {XlogTag::DCRD, "DCRD"},
    {XlogTag::GCALL, "GCALL"},   {XlogTag::GR, "GR"},         {XlogTag::GRM, "GRM"},
    {XlogTag::HCALL, "HCALL"},   {XlogTag::HST, "HST"},       {XlogTag::IMAP, "IMAP"},
    {XlogTag::IMGD, "IMGD"},     {XlogTag::INP, "INP"},       {XlogTag::IPC, "IPC"},
    {XlogTag::KMM, "KMM"},       {XlogTag::MIM, "MIM"},       {XlogTag::MNS, "MNS"},
    {XlogTag::PGA, "PGA"},       {XlogTag::PGAIPC, "PGAIPC"}, {XlogTag::PLR, "PLR"},
    {XlogTag::SER, "SER"},       {XlogTag::UI, "UI"},         {XlogTag::UTL, "UTL"},
    {XlogTag::VDES, "VDES"},     {XlogTag::VMMGR, "VMMGR"},   {XlogTag::WERH, "WERH"},
    {XlogTag::XCOND, "XCOND"},   {XlogTag::XFILE, "XFILE"},   {XlogTag::XLIB, "XLIB"},
    {XlogTag::XLOCK, "XLOCK"},   {XlogTag::XLOG, "XLOG"},     {XlogTag::XMEM, "XMEM"},
    {XlogTag::XMUTEX, "XMUTEX"}, {XlogTag::XPROC, "XPROC"},   {XlogTag::XSOCK, "XSOCK"},
    {XlogTag::XSTR, "XSTR"},     {XlogTag::XTHR, "XTHR"},     {XlogTag::XTIME, "XTIME"},
    {XlogTag::XTIMER, "XTIMER"},
};

bool enabled(XlogTag tag, std::int32_t level) { return xlogIsEnabled({tag, ""}, level); }

}  // namespace

TEST_F(XlogTest, EveryTagStartsAtInformationAndMemoryAtDebug) {
    for (int tag = 0; tag < 43; ++tag) {
        const XlogTag which = static_cast<XlogTag>(tag);
        const bool isMemory = which == XlogTag::XMEM;
        EXPECT_TRUE(enabled(which, XLOG_INFORMATION)) << tag;
        EXPECT_EQ(enabled(which, XLOG_DEBUG), isMemory) << tag;
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

// The logger of the call before stays: what is shown of the start is its decision.
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
    for (int tag = 0; tag < 43; ++tag) {
        EXPECT_TRUE(enabled(static_cast<XlogTag>(tag), XLOG_VERBOSE)) << tag;
    }
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

TEST_F(XlogTest, PrintAnswersTheBytesWritten) {
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
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kLines; ++i) {
                XLOG_I(kConf, "%d:%d %s", t, i,
                       std::string(300, static_cast<char>('a' + t)).c_str());
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    const Lines lines = messages();
    EXPECT_EQ(lines.size(), std::size_t{kThreads * kLines});
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()).size(), lines.size());
    for (const std::string& line : lines) {
        ASSERT_EQ(line.rfind("I CONF  ", 0), 0u) << line;
        EXPECT_EQ(line.substr(line.size() - 300), std::string(300, line.back()));
    }
}

TEST_F(XlogTest, ALoggerOfTheHostsGetsEveryLine) {
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

namespace {

std::string greeting;

std::int32_t enableAll(std::int32_t, std::int32_t) { return 1; }

std::int32_t keepGreeting(std::int32_t level, std::int32_t tag, const char*, const char*,
                          std::int32_t, const char* format, ...) {
    greeting = std::to_string(level) + " " + std::to_string(tag) + " " + format;
    return 0;
}

}  // namespace

TEST(XlogStart, ALoggerOfTheHostsIsGreetedAtDebugLevel) {
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

TEST(XlogStart, BeforeItOnlyErrorsPassWithoutATagName) {
    const ChildResult result = runSubprocess("logsBeforeStart");
    EXPECT_EQ(result.status, 0u);
    ASSERT_EQ(logMessages(result.out).size(), 1u) << result.out;
    EXPECT_TRUE(
        std::regex_search(result.out, std::regex("^[0-9-]+ [0-9:.]+ \\d+ +\\d+ +E: an error")))
        << result.out;
}

SUBPROCESS(logsToStandardOutput) {
    if (xlogLibInit(nullptr, "") != 0) return 1;
    XLOG_I(kConf, "to the console");
    return 0;
}

TEST(XlogStart, AnEmptyPathMeansStandardOutput) {
    const ChildResult result = runSubprocess("logsToStandardOutput");
    EXPECT_EQ(result.status, 0u);
    EXPECT_NE(result.out.find(" CONF    I: to the console"), std::string::npos) << result.out;
}

SUBPROCESS(logsIntoMissingFolder) {
    if (xlogLibInit(nullptr, arguments[0]) != 0) return 1;
    return 0;
}

TEST(XlogStart, AFileThatCannotBeOpenedIsFatalAndItsLineIsLost) {
    const TempFolder folder;
    const ChildResult result = runSubprocess("logsIntoMissingFolder", {folder / "Logs/Player.log"});
    EXPECT_EQ(result.status, kFatalStatus);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(folder.list(), Lines{});
}

SUBPROCESS(breaksFatally) {
    if (xlogLibInit(nullptr, arguments[0]) != 0) return 1;
    XLOG_FATAL(kMem);
}

TEST(XlogStart, TheFatalBreakLogsItsPlaceAndEndsTheProcess) {
    const TempFolder folder;
    EXPECT_EQ(runSubprocess("breaksFatally", {folder / "log"}).status, kFatalStatus);
    const Lines lines = logMessages(folder.read("log"));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(logged::withoutNumber(lines[0]), logged::fatalBreak("XMEM", "Source/xpl/Xmem"));
    EXPECT_EQ(lines[0].substr(lines[0].size() - 11), " 0.000000()") << lines[0];
}

SUBPROCESS(logsManyLines) {
    if (xlogLibInit(nullptr, arguments[0]) != 0) return 1;
    for (int i = 0; i < 1000; ++i) XLOG_I(kConf, "%s:%d", arguments[1].c_str(), i);
    return 0;
}

TEST(XlogStart, ProcessesShareALogWithoutLosingLines) {
    if (!appendsAreAtomic()) GTEST_SKIP() << kNeedsAtomicAppends;
    const TempFolder folder;
    std::vector<ChildProcess> children;
    for (const char* name : {"a", "b", "c", "d"}) {
        children.push_back(startSubprocess("logsManyLines", {folder / "log", name}));
    }
    for (ChildProcess& child : children) EXPECT_EQ(child.finish().status, 0u);
    const Lines lines = logMessages(folder.read("log"));
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()).size(), 4000u);
}

TEST_F(XlogTest, NumbersThatAreNoTagOrLevelAreLinesAllTheSame) {
    const XlogLogger& logger = xlogGetLogger();
    EXPECT_EQ(logger.isEnabled(43, XLOG_ERROR), 0);
    EXPECT_EQ(logger.isEnabled(-1, XLOG_ERROR), 0);
    EXPECT_GT(logger.print(5, 43, "f", "g", 1, "line"), 0);
    EXPECT_NE(folder.read("log").find("         ?: line\n"), std::string::npos)
        << folder.read("log");
}
