// Events from a raw pipe to the callbacks of a host without Qt.
#include "EveryEvent.h"
#include "ProgramFunctions.h"
#include "support/EventPackets.h"
#include "support/LogLines.h"
#include "support/MalformedPackets.h"
#include "support/Proof.h"
#include "support/RawServer.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "support/event_table.h"
#include "support/growth.h"

namespace {

// The callbacks of all slots, and how many they are.
const std::string kAllSlots = std::to_string((1 << KNOWN_EVENT_COUNT) - 1);
const std::string kAll = std::to_string(KNOWN_EVENT_COUNT);

// How many functions start a program. Without the program each of them returns 2.
#define ONE(function, count, arguments) +1
constexpr int kPrograms = PROGRAM_FUNCTIONS(ONE);
#undef ONE

constexpr std::uint32_t kSumOfNothing = 2166136261u;

std::uint32_t addToSum(std::uint32_t sum, const std::string& text) {
    for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 16777619u;
    return sum;
}

// How the host shows a text that is too long to print.
std::string longText(const std::string& text) {
    return "#" + std::to_string(text.size()) + ":" + std::to_string(addToSum(kSumOfNothing, text));
}

// Odd packets that can travel, and what becomes of them.
struct OddEvents {
    OddEvents() {
        for (const std::string& packet : malformedPackets()) {
            if (packet.size() < 12) continue;
            packets.push_back(packet);
            Reading reading = referenceReading(packet);
            calls += static_cast<int>(reading.calls.size());
            if (reading.error.empty()) continue;
            errors.push_back(reading.error.replace(0, 9, "E BRIDGE Helper_bridge "));
        }
    }

    Lines packets;
    int calls = 0;
    Lines errors;
};

class EventsTest : public PlainHostTest {
 protected:
    EventsTest() { writeConf("vtr.instance.Nougat64.dpi=\"240\"\n"); }

    // A host that waits for this many events. The status is checked when it is collected.
    ChildProcess startHost(const Script& script) const {
        Script all{"sandbox",    "registry",   "UserDefinedDir", data.path(), "registry",
                   "InstallDir", "C:\\None\\", "init",           "Helper"};
        all.insert(all.end(), script.begin(), script.end());
        return ChildProcess(builtProgram("plain_host.exe"), all);
    }

    // What a host is to do that notes its figures after so many events, and after each of the
    // batches that follow.
    static Script waitAndNote(int warmUp, int batch) {
        Script script;
        for (int i = 0; i <= GROWTH_BATCHES; ++i) {
            for (const std::string& word :
                 {std::string("wait"), std::to_string(warmUp + i * batch), std::string("steady")}) {
                script.push_back(word);
            }
        }
        return script;
    }

    // The lines behind the "init 0" that each host begins with.
    static Lines linesAfterInit(ChildProcess& host, std::uint32_t status = 0) {
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, status) << result.out << result.err;
        Lines lines = linesOf(result.out);
        EXPECT_EQ(lines.empty() ? "" : lines[0], "init 0");
        if (!lines.empty()) lines.erase(lines.begin());
        return lines;
    }

    Lines loggedErrors() const {
        Lines errors;
        for (const std::string& line : log()) {
            if (line.compare(0, 2, "E ") == 0) errors.push_back(line);
        }
        return errors;
    }

    // What a host with the callbacks of a mask prints for packets that make so many calls.
    Lines linesFor(const std::string& mask, const std::string& packets, int calls) const {
        ChildProcess host = startHost({"register", mask, "wait", std::to_string(calls), "fini"});
        RawPipe pipe(connectToHelper());
        EXPECT_TRUE(pipe.write(packets));
        return linesAfterInit(host);
    }
};

}  // namespace

TEST_F(EventsTest, EachReachesItsCallbackOnTheServersThread) {
    EXPECT_EQ(linesFor(kAllSlots, everyEvent(), KNOWN_EVENT_COUNT),
              with(everyLine(), {"waited " + kAll, "fini 0"}));
}

TEST_F(EventsTest, EmptyTextsArriveEmpty) {
    std::string packets;
    Lines lines;
    for (const KnownEvent& event : knownEvents()) {
        packets += eventPacket(event, wordsOf(event, "", 0));
        lines.push_back(hostLine(event, wordsOf(event, "", 0)));
    }
    EXPECT_EQ(linesFor(kAllSlots, packets, KNOWN_EVENT_COUNT),
              with(lines, {"waited " + kAll, "fini 0"}));
}

TEST_F(EventsTest, TextsOfAMebibyteArriveWhole) {
    std::string text(1 << 20, ' ');
    for (std::size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>('a' + i % 23);
    std::string packets;
    Lines lines;
    for (const KnownEvent& event : knownEvents()) {
        packets += eventPacket(event, wordsOf(event, text, 1));
        lines.push_back(hostLine(event, wordsOf(event, longText(text), 1)));
    }
    EXPECT_EQ(linesFor(kAllSlots, packets, KNOWN_EVENT_COUNT),
              with(lines, {"waited " + kAll, "fini 0"}));
}

TEST_F(EventsTest, AFinishedImageAnnouncesTheInstanceListFirst) {
    EXPECT_EQ(linesFor(kAllSlots, installImageProgressPacket("Nougat32", 2, 100), 2),
              (Lines{"instanceListUpdated", "installImageProgress Nougat32|2|100.000", "waited 2",
                     "fini 0"}));
}

TEST_F(EventsTest, ASlotThatIsNullIsPassedOver) {
    // Without slot 3, slot 4 does not hear either.
    EXPECT_EQ(linesFor("256", everyEvent(), 1),
              (Lines{lineOf("account-list-updated"), "waited 1", "fini 0"}));
    EXPECT_EQ(linesFor("264", everyEvent(), 1),
              (Lines{lineOf("account-list-updated"), "waited 1", "fini 0"}));
}

TEST_F(EventsTest, Slot3WithoutSlot4EndsTheHostAtAListUpdate) {
    ChildProcess host = startHost({"register", "4", "wait", "1", "fini"});
    RawPipe pipe(connectToHelper());
    ASSERT_TRUE(pipe.write(instanceListUpdatedPacket()));
    EXPECT_EQ(linesAfterInit(host, kFatalStatus), Lines{});
    expectBreak("BRIDGE", "Source/bridge/BridgeIpcClbk");
}

TEST_F(EventsTest, MalformedPacketsAreReadOrRefusedAndTheNextEventArrives) {
    const OddEvents odd;
    std::string packets;
    for (const std::string& packet : odd.packets) packets += packet;
    const int calls = odd.calls + 1;
    const Lines lines = linesFor(kAllSlots, packets + appDisplayedPacket("good", "one"), calls);
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(calls) + 2);
    EXPECT_EQ(lines[lines.size() - 3], "appDisplayed good|one");
    EXPECT_EQ(loggedErrors(), odd.errors);
}

TEST_F(EventsTest, MalformedPacketsOnConnectionsOfTheirOwnLeaveNothingBehind) {
    const OddEvents odd;
    constexpr int kWarmUps = 4;
    const int calls = odd.calls + 1;
    Script script{"quiet", "register", kAllSlots, "served", "Helper"};
    script = with(script, waitAndNote(kWarmUps * calls, calls));
    ChildProcess host = startHost(with(script, {"fini"}));
    EXPECT_EQ(host.readLine(), "init 0");
    EXPECT_EQ(host.readLine(), "served");
    Lines errors;
    int sent = 0;
    const auto sendAll = [&] {
        for (const std::string& packet : odd.packets) {
            RawPipe pipe(connectToHelper());
            ASSERT_TRUE(pipe.write(packet));
        }
        errors = with(errors, odd.errors);
        for (int i = 0; i < 2000 && loggedErrors().size() < errors.size(); ++i) ::Sleep(5);
        RawPipe pipe(connectToHelper());
        ASSERT_TRUE(pipe.write(appDisplayedPacket("good", "one")));
        sent += calls;
    };
    for (int i = 0; i < kWarmUps; ++i) sendAll();
    for (int i = 0; i < GROWTH_BATCHES; ++i) {
        EXPECT_EQ(host.readLine(), "waited " + std::to_string(sent));
        EXPECT_EQ(host.readLine(), "noted");
        sendAll();
    }
    const ChildResult result = host.finish();
    EXPECT_EQ(result.status, 0u);
    const Lines lines = linesOf(result.out);
    ASSERT_EQ(lines.size(), 3u) << result.out;
    EXPECT_EQ(lines[0], "waited " + std::to_string(sent));
    EXPECT_LT(bytesOfABatch("steady", lines[1]), 16 * static_cast<long>(odd.packets.size()));
    EXPECT_EQ(lines[2], "fini 0");
    std::sort(errors.begin(), errors.end());
    Lines logged = loggedErrors();
    std::sort(logged.begin(), logged.end());
    EXPECT_EQ(logged, errors);
}

TEST_F(EventsTest, ALengthBelowTheHeaderEndsTheHostWithItsLines) {
    for (const std::uint32_t length : {0u, 11u, 0x8000000Cu, 0xFFFFFFFFu}) {
        ChildProcess host = startHost({"register", kAllSlots, "wait", "1", "fini"});
        RawPipe pipe(connectToHelper());
        ASSERT_TRUE(pipe.write(bytesOf(3003u) + bytesOf(length) + bytesOf(0u)));
        EXPECT_EQ(linesAfterInit(host, kFatalStatus), Lines{});
        const Lines lines = log();
        const std::string rest = std::to_string(static_cast<std::int32_t>(length - 12));
        EXPECT_EQ(lines.at(lines.size() - 2), logged::byHelper(logged::lengthInvalid(
                                                  kHelperServer, std::to_string(length), rest)));
        expectBreak("IPC", "Source/ipc/IpcServer");
    }
}

TEST_F(EventsTest, EveryFunctionWorksInsideEachCallback) {
    data.makeFolder("Engine\\Nougat64\\AppCache");
    ChildProcess host =
        startHost({"reenter", kAllSlots, data / "Inside.conf", "wait", kAll, "fini"});
    RawPipe pipe(connectToHelper());
    ASSERT_TRUE(pipe.write(everyEvent()));
    Lines expected;
    for (const std::string& line : everyLine()) {
        expected.push_back("inside: read 5, set 0, list 1, commit 0, to a file 0");
        expected.push_back("inside: launched " + std::to_string(2 * kPrograms) +
                           ", asked 0, apps 1, ended 0");
        expected.push_back(line);
    }
    EXPECT_EQ(linesAfterInit(host), with(expected, {"waited " + kAll, "fini 0"}));
    const std::string last = std::to_string(100 + KNOWN_EVENT_COUNT - 1);
    const std::string isEven = last.find_last_of("02468") + 1 == last.size() ? "1" : "0";
    for (const char* file : {"vantrel.conf", "Inside.conf"}) {
        const std::string text = data.read(file);
        for (const std::string& line :
             {"vtr.instance.Nougat64.dpi=\"" + last + "\"\n",
              "vtr.enable_statusbar=\"" + isEven + "\"\n", "vtr.locale=\"place " + last + "\"\n",
              "vtr.shared_folders=\"place " + last + "\"\n"}) {
            EXPECT_NE(text.find(line), std::string::npos) << file << ": " << line;
        }
    }
}

TEST_F(EventsTest, ACallbackThatBlocksHoldsTheOthersUpAndLosesNone) {
    ChildProcess host =
        startHost({"block", "5000", "register", "128", "served", "Helper", "wait", "3", "fini"});
    RawPipe first(connectToHelper());
    RawPipe second(connectToHelper());
    ASSERT_TRUE(first.write(appDisplayedPacket("1", "a") + appDisplayedPacket("2", "b")));
    ASSERT_TRUE(second.write(appDisplayedPacket("3", "c")));
    const Lines lines = linesAfterInit(host);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "appDisplayed 3|c"), 1);
    const auto a = std::find(lines.begin(), lines.end(), "appDisplayed 1|a");
    EXPECT_NE(std::find(a, lines.end(), "appDisplayed 2|b"), lines.end());
}

TEST_F(EventsTest, TheEndWaitsForACallbackThatRuns) {
    ChildProcess host = startHost(
        {"block", "500", "register", "128", "served", "Helper", "waitbegun", "1", "fini"});
    EXPECT_EQ(host.readLine(), "init 0");
    EXPECT_EQ(host.readLine(), "served");
    RawPipe pipe(connectToHelper());
    ASSERT_TRUE(pipe.write(appDisplayedPacket("1", "a")));
    const ChildResult result = host.finish();
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(linesOf(result.out), (Lines{"waited 1", "appDisplayed 1|a", "fini 0"}));
}

TEST_F(EventsTest, ASecondHostOfANameIsToldAndTheFirstGetsTheEvents) {
    ChildProcess first = startHost({"register", "128", "served", "Helper", "wait", "1", "fini"});
    EXPECT_EQ(first.readLine(), "init 0");
    EXPECT_EQ(first.readLine(), "served");
    ChildProcess second = startHost({"register", "128", "fini"});
    EXPECT_EQ(linesAfterInit(second), Lines{"fini 0"});
    const Lines told = log();
    EXPECT_EQ(std::count(told.begin(), told.end(),
                         logged::byHelper(logged::notListening(
                             kHelperServer, "8(QLocalServer::listen: Address in use)"))),
              1)
        << ::testing::PrintToString(told);
    RawPipe pipe(connectToHelper());
    ASSERT_TRUE(pipe.write(appDisplayedPacket("1", "a")));
    const ChildResult result = first.finish();
    EXPECT_EQ(linesOf(result.out), (Lines{"appDisplayed 1|a", "waited 1", "fini 0"}));
}

TEST_F(EventsTest, TheLastInitialisationNamesTheServer) {
    EXPECT_EQ(output({"init", "Helper", "initex", "Installer", "1", data / "own.log", "register",
                      kAllSlots, "served", "Installer", "fini"}),
              (Lines{"init 0", "initex 0", "served", "fini 0"}));
}

TEST_F(EventsTest, AnInitialisationThatIsRefusedNamesNoServer) {
    EXPECT_EQ(output({"init", "Helper", "initex", "installer", "1", data / "own.log", "register",
                      kAllSlots, "served", "Helper", "fini"}),
              (Lines{"init 0", "initex 22", "served", "fini 0"}));
}

TEST_F(EventsTest, AHostThatDoesNotFinishEndsCleanly) {
    for (const char* way : {"exit", "exitthread"}) {
        ChildProcess host = startHost({"register", "128", "served", "Helper", "wait", "1", way});
        EXPECT_EQ(host.readLine(), "init 0");
        EXPECT_EQ(host.readLine(), "served");
        RawPipe open(connectToHelper());
        RawPipe half(connectToHelper());
        ASSERT_TRUE(half.write("abc"));
        ASSERT_TRUE(open.write(appDisplayedPacket("1", "a")));
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, 0u) << way << result.err;
        EXPECT_EQ(linesOf(result.out), (Lines{"appDisplayed 1|a", "waited 1"})) << way;
    }
}

TEST_F(EventsTest, AHostsDllThatFinishesWhileTheProcessEndsKeepsNobody) {
    ChildProcess host = startHost({"register", "128", "plugin", builtProgram("late_plugin.dll"),
                                   "served", "Helper", "wait", "1"});
    EXPECT_EQ(host.readLine(), "init 0");
    EXPECT_EQ(host.readLine(), "plugin 1");
    EXPECT_EQ(host.readLine(), "served");
    RawPipe open(connectToHelper());
    ASSERT_TRUE(open.write(appDisplayedPacket("1", "a")));
    const ChildResult result = host.finish();
    EXPECT_EQ(result.status, 0u) << result.err;
    EXPECT_EQ(linesOf(result.out), (Lines{"appDisplayed 1|a", "waited 1"}));
}

// Every other life is used; the rest end as soon as they have begun.
TEST_F(EventsTest, TheLibraryIsLoadedUsedAndUnloadedAgainAndAgain) {
    const std::string copy = data / "Copy-of-QX-Bridge.dll";
    writeBytes(copy, readBytes(builtProgram("QX-Bridge.dll")));
    const std::string player = "Life" + std::to_string(::GetCurrentProcessId());
    const std::string request = packetOf(2000, bytesOf(0u));
    std::atomic<int> asked{0};
    RawServer server("vtr_plr_" + player + "_nvo",
                     [&](RawPipe& pipe) { asked += pipe.readAll() == request; });
    const int cycles = proofSize(100, 10'000);
    const int all = 20 + cycles;
    const int used = all / 2;
    const int bytesOfALife = proofSize(32, 8);
    const Lines lines = output({"loadunload", copy, std::to_string(cycles), player});
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "lives " + std::to_string(all) + ", events " + std::to_string(used));
    const long kept = bytesOfABatch("lives", lines[1]) - bytesOfABatch("control", lines[2]);
    EXPECT_LT(kept, bytesOfALife * cycles / GROWTH_BATCHES) << lines[1] << ", " << lines[2];
    for (int i = 0; i < 2000 && server.served() < used; ++i) ::Sleep(5);
    EXPECT_EQ(server.served(), used);
    EXPECT_EQ(asked, used);
    const std::string last = "vtr.locale=\"life " + std::to_string(all - 2) + "\"\n";
    EXPECT_NE(data.read("vantrel.conf").find(last), std::string::npos);
}

TEST_F(EventsTest, AnUnloadWithoutTheEndLeavesTheServerRunning) {
    const std::string copy = data / "Copy-of-QX-Bridge.dll";
    writeBytes(copy, readBytes(builtProgram("QX-Bridge.dll")));
    EXPECT_EQ(output({"loadonly", copy, "served", "Installer"}),
              (Lines{"init 0", "unloaded 0", "served"}));
}

TEST_F(EventsTest, TenThousandEventsArriveInOrderAndLeaveNothingBehind) {
    const int warmUp = 500;
    const int batch = proofSize(10'000, 1'000'000) / GROWTH_BATCHES;
    Script script{"quiet", "register", "128", "served", "Helper"};
    script = with(script, waitAndNote(warmUp, batch));
    ChildProcess host = startHost(with(script, {"fini", "digest"}));
    EXPECT_EQ(host.readLine(), "init 0");
    EXPECT_EQ(host.readLine(), "served");
    std::uint32_t sum = kSumOfNothing;
    int sent = 0;
    const auto send = [&](int count) {
        RawPipe pipe(connectToHelper());
        std::string packets;
        for (const int end = sent + count; sent < end; ++sent) {
            const std::string number = std::to_string(sent);
            packets += appDisplayedPacket("N", number);
            sum = addToSum(sum, "appDisplayed N|" + number + "\n");
            if (packets.size() < 32'000 && sent + 1 < end) continue;
            ASSERT_TRUE(pipe.write(packets));
            packets.clear();
        }
    };
    send(warmUp);
    for (int i = 0; i < GROWTH_BATCHES; ++i) {
        EXPECT_EQ(host.readLine(), "waited " + std::to_string(sent));
        EXPECT_EQ(host.readLine(), "noted");
        send(batch);
    }
    const ChildResult result = host.finish();
    EXPECT_EQ(result.status, 0u);
    const Lines lines = linesOf(result.out);
    ASSERT_EQ(lines.size(), 4u) << result.out;
    EXPECT_EQ(lines[0], "waited " + std::to_string(sent));
    EXPECT_LT(bytesOfABatch("steady", lines[1]), batch);
    EXPECT_EQ(lines[2], "fini 0");
    EXPECT_EQ(lines[3], "digest " + std::to_string(sum));
}
