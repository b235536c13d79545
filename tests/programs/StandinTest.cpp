#include <gtest/gtest.h>

#include <random>

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

TEST(StandinScript, ReadsEveryWish) {
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

TEST(StandinScript, RefusesWhatItDoesNotKnow) {
    for (const char* text : {"nonsense", "delay", "delay x", "delay -1", "reply 0", "reply zz",
                             "speed 5", "split 3x"}) {
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
