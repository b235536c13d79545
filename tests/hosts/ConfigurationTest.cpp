#include <regex>

#include "ConfExpectation.h"
#include "PlainHost.h"
#include "support/LogLines.h"
#include "support/Platform.h"

namespace {

using ConfigurationTest = PlainHostTest;

Lines linesOfCommitTo(const std::string& path) {
    return {logged::byHelper(logged::committingForHost(path)),
            logged::byHelper(logged::committing(path))};
}

// With "N" for the milliseconds.
Lines withoutTimes(Lines lines) {
    static const std::regex time(" [0-9]+ ms$");
    for (std::string& line : lines) line = std::regex_replace(line, time, " N ms");
    return lines;
}

}  // namespace

TEST_F(ConfigurationTest, EveryTypeIsReadAndSet) {
    writeConf("vtr.instance.Nougat64.display_name=\"Jeux é日\"\n");
    const Script read = script(
        "getbool vtr.enable_statusbar geti32 vtr.instance.Nougat64.dpi "
        "getstr vtr.instance.Nougat64.display_name getmulti vtr.shared_folders");
    const Script set = script(
        "setbool vtr.enable_statusbar 0 seti32 vtr.instance.Nougat64.dpi -7 "
        "setstr vtr.instance.Nougat64.display_name Zwölf setmulti vtr.shared_folders a,b");
    EXPECT_EQ(asHelper(with(with(with(read, set), read), {"commit"})),
              (Lines{"getbool 1", "geti32 240", "getstr Jeux é日",
                     "getmulti Documents,Pictures,InputMapper,VtrSharedFolder", "setbool 0",
                     "seti32 0", "setstr 0", "setmulti 0", "getbool 0", "geti32 -7", "getstr Zwölf",
                     "getmulti a,b", "commit 0"}));
    const std::string text = data.read("vantrel.conf");
    for (const char* line :
         {"vtr.enable_statusbar=\"0\"\n", "vtr.instance.Nougat64.dpi=\"-7\"\n",
          "vtr.instance.Nougat64.display_name=\"Zwölf\"\n", "vtr.shared_folders=\"a,b\"\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(linesOf(text).size(), globalCount() + instanceCount());
}

TEST_F(ConfigurationTest, AnyByteButZeroIsTrue) {
    writeConf("");
    EXPECT_EQ(asHelper("setbool vtr.force_raw_mode 2 getbool vtr.force_raw_mode"),
              (Lines{"setbool 0", "getbool 1"}));
}

TEST_F(ConfigurationTest, AReturnedTextSurvivesLaterChanges) {
    writeConf("vtr.locale=\"before\"\n");
    EXPECT_EQ(asHelper("hold vtr.locale getstr vtr.locale"),
              (Lines{"hold before", "getstr changed"}));
}

TEST_F(ConfigurationTest, FreeingNullDoesNothing) {
    EXPECT_EQ(output("freenull fini"), Lines{"fini 0"});
}

TEST_F(ConfigurationTest, NullTextsAreRefusedWithALogLine) {
    writeConf("");
    EXPECT_EQ(asHelper("getbool (null) geti32 (null) geti64 (null) getstr (null) getmulti (null) "
                       "setbool (null) 1 seti32 (null) 1 seti64 (null) 1 setstr (null) x "
                       "setstr vtr.locale (null) setmulti vtr.shared_folders (null) "
                       "committo (null)"),
              (Lines{"getbool 0", "geti32 0", "geti64 0", "getstr (null)", "getmulti (null)",
                     "setbool 22", "seti32 22", "seti64 22", "setstr 22", "setstr 22",
                     "setmulti 22", "committo 22"}));
    const Lines lines = logAfterInit();
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(lines[0], logged::byHelper(logged::nullArgument("bridgeConfGetBool")));
    EXPECT_EQ(lines[11], logged::byHelper(logged::nullArgument("bridgeConfCommitToFile")));
}

TEST_F(ConfigurationTest, CommittingToAFileLogsItsPathTwice) {
    writeConf("vtr.locale=\"a\"\n");
    const std::string copy = data / "copy.conf";
    EXPECT_EQ(asHelper({"committo", copy}), Lines{"committo 0"});
    EXPECT_EQ(logAfterInit(), linesOfCommitTo(copy));
    EXPECT_EQ(linesOf(data.read("copy.conf")).size(), globalCount());
}

TEST_F(ConfigurationTest, ACommitAfterOneToAnotherFileWritesAndLogsNothing) {
    writeConf("vtr.locale=\"a\"\n");
    const std::string copy = data / "copy.conf";
    EXPECT_EQ(asHelper({"setstr", "vtr.locale", "b", "committo", copy, "commit"}),
              (Lines{"setstr 0", "committo 0", "commit 0"}));
    EXPECT_EQ(logAfterInit(), linesOfCommitTo(copy));
    EXPECT_NE(data.read("copy.conf").find("vtr.locale=\"b\"\n"), std::string::npos);
    EXPECT_EQ(data.read("vantrel.conf"), "vtr.locale=\"a\"\n");
}

TEST_F(ConfigurationTest, ABoolOfAnInstanceThatIsNotLoadedEndsTheHost) {
    writeConf("");
    const std::string key = "vtr.instance.Nougat64.enable_vsync";
    const ChildResult before = play({"init", "Helper", "getbool", key});
    EXPECT_EQ(before.status, kFatalStatus);
    EXPECT_EQ(linesOf(before.out), Lines{"init 0"});
    const Lines lines = log();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2], logged::byHelper(logged::boolInvalid(key, "")));
    expectBreak("CONF", "Source/conf/Conf");
    writeConf(key + "=\"1\"\n");
    EXPECT_EQ(asHelper({"getbool", key}), Lines{"getbool 1"});
}

TEST_F(ConfigurationTest, ACommitWithoutAChangeWritesAndLogsNothing) {
    writeConf("vtr.locale=\"a\"\n");
    EXPECT_EQ(asHelper("commit"), Lines{"commit 0"});
    EXPECT_EQ(data.read("vantrel.conf"), "vtr.locale=\"a\"\n");
    EXPECT_EQ(logAfterInit(), Lines{});
}

TEST_F(ConfigurationTest, AnUnknownKeyEndsTheHost) {
    writeConf("");
    for (const char* operation : {"getstr", "getmulti", "getbool", "geti32", "geti64"}) {
        const ChildResult result = play({"init", "Helper", operation, "vtr.nothing"});
        EXPECT_EQ(result.status, kFatalStatus) << operation;
        EXPECT_EQ(linesOf(result.out), Lines{"init 0"}) << operation;
    }
    EXPECT_EQ(logAfterInit()[0], logged::byHelper(logged::keyUnknown("vtr.nothing")));
    expectBreak("CONF", "Source/conf/Conf");
}

TEST_F(ConfigurationTest, TheI64FunctionsHaveNoKeyToWorkOn) {
    writeConf("");
    for (const char* operation : {"geti64 vtr.next_vm_id", "seti64 vtr.next_vm_id 1"}) {
        EXPECT_EQ(play(with({"init", "Helper"}, script(operation))).status, kFatalStatus);
    }
}

TEST_F(ConfigurationTest, WithoutAConfFileACommitLeavesNothingInTheCurrentFolder) {
    const TempFolder current;
    ChildOptions options;
    options.folder = current.path();
    const ChildResult result =
        play(script("initex Helper 1 (null) setstr vtr.guid x commit"), options);
    EXPECT_EQ(linesOf(result.out), (Lines{"initex 0", "setstr 0", "commit 2"}));
    EXPECT_EQ(current.list(), Lines{});
    EXPECT_EQ(log().back(), logged::byHelper(logged::confNotReplaced("2 [XERR_NOENT]")));
}

TEST_F(ConfigurationTest, ChildrenThatTheHostStartsNeverBlockACommit) {
    writeConf("");
    ChildOptions options;
    options.limit = std::chrono::seconds(120);
    const ChildResult result = play({"init", "Helper", "commitamong", "25", "50"}, options);
    EXPECT_EQ(result.status, 0u) << result.err;
    EXPECT_EQ(linesOf(result.out), (Lines{"init 0", "meanwhile 0", "afterwards 0"}));
    EXPECT_EQ(data.list(), (Lines{"Logs", "vantrel.conf"}));
}

// Only the commit waits for the file's lock, which another program has.
TEST_F(ConfigurationTest, ReadsSetsAndTheListingGoOnWhileACommitWaitsForAnotherProgram) {
    writeConf("vtr.instance.Nougat64.dpi=\"240\"\n");
    ChildOptions options;
    options.folder = data.path();
    ChildProcess host = start(
        script("init Helper takelock seti32 vtr.instance.Nougat64.dpi 320 startcommit "
               "awaitfile told geti32 vtr.instance.Nougat64.dpi setbool vtr.enable_statusbar 0 "
               "getbool vtr.enable_statusbar instances leavelock endcommit"),
        options);
    EXPECT_EQ(host.readLine(), "init 0");
    const auto lines = [this] { return withoutTimes(logAfterInit()); };
    const Lines waiting{
        logged::byHelper(logged::committing(confPath())),
        logged::byHelper(logged::lockAwaited("confCommitToFile", "Global\\vtr_conf_nvo"))};
    for (int i = 0; i < 4000 && lines() != waiting; ++i) sleepMs(5);
    EXPECT_EQ(lines(), waiting);
    data.write("told", "");
    const Lines printed = linesOf(host.finish().out);
    ASSERT_GE(printed.size(), 5u);
    EXPECT_EQ(Lines(printed.begin(), printed.begin() + 4),
              (Lines{"seti32 0", "geti32 320", "setbool 0", "getbool 0"}));
    EXPECT_EQ(printed.back(), "endcommit 0");
    Lines waited = waiting;
    waited.push_back(
        logged::byHelper(logged::lockObtained("confCommitToFile", "Global\\vtr_conf_nvo")));
    EXPECT_EQ(lines(), waited);
}
