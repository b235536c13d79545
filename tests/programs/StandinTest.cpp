#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "StandinCommandLine.h"
#include "StandinDecode.h"
#include "StandinScript.h"
#include "ipc/IpcPacket.h"
#include "xpl/Xproc.h"

namespace {

using Texts = std::vector<std::string>;

std::string bytesOf(std::uint32_t opcode, IpcFields fields, std::uint32_t reply = 0) {
    const IpcPacket packet = ipcLayOut(opcode, reply, fields);
    return {reinterpret_cast<const char*>(packet.bytes.get()), packet.size};
}

std::string text(std::string_view packet) {
    return standinDescribe(packet, standinPlayerRequests(), StandinFormat::Text);
}

std::string json(std::string_view packet) {
    return standinDescribe(packet, standinPlayerRequests(), StandinFormat::Json);
}

}  // namespace

TEST(StandinCommandLine, UndoesTheProductsQuoting) {
    EXPECT_EQ(standinSplit(R"("C:\\P\\x.exe" "a b" "say \"hi\"" "" "C:\\")"),
              (Texts{R"(C:\P\x.exe)", "a b", R"(say "hi")", "", R"(C:\)"}));
    EXPECT_EQ(standinSplit(R"(x.exe --instance Nougat64  --cmd)"),
              (Texts{"x.exe", "--instance", "Nougat64", "--cmd"}));
    EXPECT_EQ(standinSplit(""), Texts{});
    EXPECT_EQ(standinSplit("   "), Texts{});
    EXPECT_EQ(standinSplit(R"("open)"), Texts{"open"});
}

TEST(StandinCommandLine, RandomArgumentsSurviveTheRoundTrip) {
    std::mt19937 random(11);
    const char* const pieces[] = {"\"", "\\", " ", "\t", "\n", "a", "é", "日", "\xF0\x9F\x8E\xAE",
                                  "--"};
    for (int round = 0; round < 5000; ++round) {
        Texts arguments(1 + random() % 5);
        for (std::string& argument : arguments) {
            for (unsigned i = random() % 8; i > 0; --i) argument += pieces[random() % 10];
        }
        ASSERT_EQ(standinSplit(xprocJoin(arguments, 0)), arguments) << xprocJoin(arguments, 0);
    }
}

TEST(StandinCommandLine, FindsOptions) {
    const Texts arguments{"p", "--instance", "A", "--hidden", "--cmd", "x"};
    EXPECT_EQ(standinOption(arguments, "instance"), "A");
    EXPECT_EQ(standinOption(arguments, "cmd"), "x");
    EXPECT_EQ(standinOption(arguments, "url"), std::nullopt);
    EXPECT_EQ(standinOption({"p", "--instance"}, "instance"), std::nullopt);
}

TEST(StandinDecode, DescribesRequests) {
    EXPECT_EQ(text(bytesOf(2000, {true})), "plrShutdownRpc(true)");
    EXPECT_EQ(text(bytesOf(2001, {}, 8)), "plrBringToFrontRpc()");
    EXPECT_EQ(text(bytesOf(2006, {"com.example \"é\""})),
              "plrLaunchAppRpc(\"com.example \\\"é\\\"\")");
    EXPECT_EQ(text(bytesOf(2011, {1, 0.5, -2.0, 3})), "plrMnsSyncMouseEventRpc(1,0.5,-2.0,3)");
    EXPECT_EQ(json(bytesOf(2001, {}, 8)),
              R"({"request":"plrBringToFrontRpc","opcode":2001,"replyLength":8,"arguments":[]})");
    EXPECT_EQ(json(bytesOf(2010, {-5, true})),
              R"({"request":"plrMnsSyncKeyEventRpc","opcode":2010,"replyLength":0,)"
              R"("arguments":[-5,true]})");
    EXPECT_EQ(standinDescribe(bytesOf(4003, {"a", "b", "c", "d", "e", "f"}),
                              standinManagerRequests(), StandinFormat::Text),
              R"(mimCreateFreshInstanceRpc("a","b","c","d","e","f"))");
}

TEST(StandinDecode, OnlyTheLowestByteOfABoolCounts) {
    std::string packet = bytesOf(2000, {false});
    packet[13] = '\x55';
    EXPECT_EQ(text(packet), "plrShutdownRpc(false)");
}

TEST(StandinDecode, EveryTruncationIsUnreadable) {
    const std::string packet = bytesOf(2005, {"ab", "c"});
    for (std::size_t size = 0; size < packet.size(); ++size) {
        EXPECT_EQ(text(packet.substr(0, size)).rfind("unreadable ", 0), 0u) << size;
    }
    EXPECT_EQ(text(packet), R"(plrLaunchAppStoreRpc("ab","c"))");
    EXPECT_EQ(text(packet + "x").rfind("unreadable ", 0), 0u);
    EXPECT_EQ(text(bytesOf(4000, {})).rfind("unreadable a00f", 0), 0u) << "the manager's";
}

TEST(StandinScript, ReadsEveryDirective) {
    std::string error;
    const auto script = standinParseScript(
        "# how to answer\nreply 0102ff\ndelay 5\nsplit 2\nshort 3\ngarbage 1 # one more\r\n\n"
        "close-early\nnever-read\nquit-after 7",
        error);
    ASSERT_TRUE(script) << error;
    EXPECT_EQ(script->reply, "\x01\x02\xFF");
    EXPECT_EQ(script->delayMs, 5);
    EXPECT_EQ(script->split, 2u);
    EXPECT_EQ(script->cut, 3u);
    EXPECT_EQ(script->garbage, 1u);
    EXPECT_TRUE(script->closeEarly);
    EXPECT_TRUE(script->neverRead);
    EXPECT_EQ(script->quitAfter, 7);
}

TEST(StandinScript, RejectsUnknownDirectives) {
    for (const char* text : {"nonsense",
                             "delay",
                             "delay x",
                             "delay -1",
                             "reply 0",
                             "reply zz",
                             "speed 5",
                             "split 3x",
                             "delay 1 2",
                             "close-early now",
                             "reply",
                             "reply \"\"",
                             "event-split x",
                             "event-close-early 1",
                             "pause",
                             "pause x",
                             "pause 1 2",
                             "event-flood",
                             "event-flood 0 instance-list-updated",
                             "event-flood 1000001 instance-list-updated",
                             "event-flood x instance-list-updated",
                             "on",
                             "on launchApp",
                             "on launchApp delay 5",
                             "on launchApp on launchApp pause 1",
                             "event app-displayed \"N p",
                             "event app-displayed \"N\"p",
                             "event app-displayed \"N\\a\" p",
                             "event app-displayed N \"p\\"}) {
        std::string error;
        EXPECT_FALSE(standinParseScript(text, error)) << text;
        EXPECT_EQ(error, "not understood: " + std::string(text));
    }
}

TEST(StandinScript, RepliesHaveTheirLengthUnlessTheyMisbehave) {
    StandinScript script;
    EXPECT_EQ(standinReply(script, 8), std::string("\x01\0\0\0\0\0\0\0", 8));
    EXPECT_EQ(standinReply(script, 2), std::string("\x01\0", 2));
    EXPECT_EQ(standinReply(script, 10), std::string("\x01\0\0\0\0\0\0\0\0\0", 10));
    script.cut = 3;
    EXPECT_EQ(standinReply(script, 8), std::string("\x01\0\0", 3));
    script.garbage = 2;
    EXPECT_EQ(standinReply(script, 8), std::string("\x01\0\0##", 5));
}

namespace {

StandinScript scriptOf(std::string_view text) {
    std::string error;
    const auto script = standinParseScript(text, error);
    EXPECT_TRUE(script) << error;
    return script.value_or(StandinScript());
}

std::string errorOf(std::string_view text) {
    std::string error;
    EXPECT_FALSE(standinParseScript(text, error)) << text;
    return error;
}

// A script's steps as text: "500 app-displayed("N","p") ...; ...".
Texts shown(const StandinSteps& steps) {
    Texts texts;
    for (const StandinStep& step : steps) {
        std::string line = std::to_string(step.pauseMs);
        for (const StandinEvent& event : step.events) {
            line += " " + standinDescribeEvent(event, {"x"}, StandinFormat::Text);
        }
        texts.push_back(line);
    }
    return texts;
}

}  // namespace

TEST(StandinScript, ReadsEventDirectives) {
    const StandinScript script = scriptOf("event-split 5\nevent-garbage 3\nevent-close-early\n");
    EXPECT_EQ(script.eventSplit, 5u);
    EXPECT_EQ(script.eventGarbage, 3u);
    EXPECT_TRUE(script.eventCloseEarly);
    EXPECT_EQ(script.split, std::nullopt);
    EXPECT_EQ(script.garbage, 0u);
    EXPECT_FALSE(script.closeEarly);
    EXPECT_TRUE(script.atStart.empty());
}

TEST(StandinScript, EventsFollowTheirPause) {
    EXPECT_EQ(shown(scriptOf("event instance-list-updated\nevent app-displayed N p\npause 20\n"
                             "pause 30\nevent app-uninstalled N p")
                        .atStart),
              (Texts{R"(0 event instance-list-updated() -> x event app-displayed("N","p") -> x)",
                     "20", R"(30 event app-uninstalled("N","p") -> x)"}));
}

TEST(StandinScript, AFloodNumbersItsEvents) {
    EXPECT_EQ(shown(scriptOf("event-flood 2 apk-install-completed N{n}{n} {n} p{n}").atStart),
              (Texts{R"(0 event apk-install-completed("N11",1,"p1") -> x)"
                     R"( event apk-install-completed("N22",2,"p2") -> x)"}));
    EXPECT_EQ(shown(scriptOf("event app-displayed N{n} p").atStart),
              (Texts{R"(0 event app-displayed("N{n}","p") -> x)"}))
        << "a single event is not numbered";
}

TEST(StandinScript, StepsCanWaitForACommandOrRequest) {
    const StandinScript script = scriptOf(
        "on launchApp pause 5\non launchApp event app-displayed N p\n"
        "on mimDownloadImageRpc event-flood 1 instance-list-updated\n"
        "on plrShutdownRpc pause 0");
    EXPECT_TRUE(script.atStart.empty());
    EXPECT_EQ(script.on.size(), 3u);
    EXPECT_EQ(shown(script.on.at("launchApp")), Texts{R"(5 event app-displayed("N","p") -> x)"});
    EXPECT_EQ(shown(script.on.at("mimDownloadImageRpc")),
              Texts{"0 event instance-list-updated() -> x"});
    EXPECT_EQ(shown(script.on.at("plrShutdownRpc")), Texts{"0"});
}

TEST(StandinScript, WordsCanBeQuoted) {
    EXPECT_EQ(std::get<std::string>(
                  scriptOf(R"(event app-displayed "a\nb\\n" p)").atStart[0].events[0].values[0]),
              "a\nb\\n");
    EXPECT_EQ(shown(scriptOf("\tevent app-displayed  \"a # b\" \"\"# comment \"\r\n"
                             R"("event" app-displayed "say \"hi\" C:\\" 日本"é#)")
                        .atStart),
              (Texts{R"(0 event app-displayed("a # b","") -> x)"
                     R"( event app-displayed("say \"hi\" C:\\","日本\"é") -> x)"}));
}

TEST(StandinScript, ErrorsOfEventsSayWhy) {
    EXPECT_EQ(errorOf("delay 5\nevent app-shown N p # x\n"),
              "not understood: event app-shown N p # x (no such event: app-shown)");
    EXPECT_EQ(errorOf("event"), "not understood: event (no event is named)");
    EXPECT_EQ(errorOf("event app-displayed N"),
              "not understood: event app-displayed N (not the arguments of: app-displayed instance "
              "package)");
    EXPECT_EQ(errorOf("event-flood 3 apk-install-completed N one f"),
              "not understood: event-flood 3 apk-install-completed N one f (not the arguments of: "
              "apk-install-completed instance status:i32 apkFilePath)");
    EXPECT_EQ(errorOf("on lunchApp pause 5"),
              "not understood: on lunchApp pause 5 (no such command or request: lunchApp)");
    EXPECT_EQ(errorOf("on plrShutdownRpc event app-shown"),
              "not understood: on plrShutdownRpc event app-shown (no such event: app-shown)");
}
