// Events from a raw pipe to the callbacks of a host without Qt.
#include "EveryEvent.h"
#include "ProgramFunctions.h"
#include "support/EventPackets.h"
#include "support/LogLines.h"
#include "support/MalformedPackets.h"
#include "support/Proof.h"
#include "support/RawServer.h"
#include "support/WaitUntil.h"
#include "support/WindowsForTests.h"
#include "support/event_table.h"
#include "support/growth.h"

namespace {

// The mask of all slots, and their number.
const std::string kAllSlots = std::to_string((1 << KNOWN_EVENT_COUNT) - 1);
const std::string kAll = std::to_string(KNOWN_EVENT_COUNT);

// The number of functions that start a program. Each returns 2 when the program is missing.
#define ONE(function, count, arguments) +1
constexpr int kPrograms = PROGRAM_FUNCTIONS(ONE);
#undef ONE

constexpr std::uint32_t kSumOfNothing = 2166136261u;

std::uint32_t addToSum(std::uint32_t sum, const std::string& text) {
    for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 16777619u;
    return sum;
}

// What the host prints for a text that is too long.
std::string longText(const std::string& text) {
    return "#" + std::to_string(text.size()) + ":" + std::to_string(addToSum(kSumOfNothing, text));
}

// Malformed packets with a whole header, and the calls and errors that they cause.
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

    // A host that plays a script after its initialisation as "Helper". No program is installed.
    ChildProcess startHost(const Script& script) const {
        ChildProcess host =
            start(with({"registry", "InstallDir", "C:\\None\\", "init", "Helper"}, script));
        EXPECT_EQ(host.readLine(), "init 0");
        return host;
    }

    // A host that plays `before`, serves its events, and plays `after`.
    ChildProcess startServing(const Script& before, const Script& after) const {
        ChildProcess host = startHost(with(with(before, {"served", "Helper"}), after));
        EXPECT_EQ(host.readLine(), "served");
        return host;
    }

    static void send(RawPipe& pipe, std::string_view packets) { EXPECT_TRUE(pipe.write(packets)); }

    // Operations that note the host's figures after a warm-up and after each batch.
    static Script waitAndNote(int warmUp, int batch) {
        Script script;
        for (int i = 0; i <= GROWTH_BATCHES; ++i) {
            script = with(script, {"wait", std::to_string(warmUp + i * batch), "steady"});
        }
        return script;
    }

    // Sends the warm-up, and each batch after the host has noted the previous one. Returns the
    // host's lines from the last batch on.
    static Lines linesOfBatches(ChildProcess& host, const std::function<int()>& sendWarmUp,
                                const std::function<int()>& sendBatch) {
        int sent = sendWarmUp();
        for (int i = 0; i < GROWTH_BATCHES; ++i) {
            EXPECT_EQ(host.readLine(), "waited " + std::to_string(sent));
            EXPECT_EQ(host.readLine(), "noted");
            sent = sendBatch();
        }
        const Lines lines = restOf(host);
        EXPECT_EQ(lines.at(0), "waited " + std::to_string(sent));
        return lines;
    }

    // The lines that the host prints from now until its end.
    static Lines restOf(ChildProcess& host, std::uint32_t status = 0) {
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, status) << result.out << result.err;
        return linesOf(result.out);
    }

    Lines loggedErrors() const {
        Lines errors;
        for (const std::string& line : log()) {
            if (line.compare(0, 2, "E ") == 0) errors.push_back(line);
        }
        return errors;
    }

    // Waits until the log has this many error lines. Does not parse it, because that is slow.
    bool waitForErrors(std::size_t count) const {
        return waitUntil([&] {
            const std::string text = data.read("Logs\\Player.log");
            std::size_t found = 0;
            for (std::size_t at = 0; (at = text.find(" E: ", at)) != std::string::npos; ++at) {
                ++found;
            }
            return found >= count;
        });
    }

    // The lines of a host with the callbacks of a mask, for packets that cause this many calls.
    Lines linesFor(const std::string& mask, const std::string& packets, int calls,
                   std::uint32_t status = 0) const {
        ChildProcess host = startHost({"register", mask, "wait", std::to_string(calls), "fini"});
        RawPipe pipe(connectToHelper());
        send(pipe, packets);
        return restOf(host, status);
    }

    // A second copy of the library, which a host loads and unloads.
    std::string copyOfLibrary() const {
        const std::string copy = data / "Copy-of-QX-Bridge.dll";
        writeBytes(copy, readBytes(builtProgram("QX-Bridge.dll")));
        return copy;
    }
};

const Lines kAllWaitedFor{"waited " + kAll, "fini 0"};

}  // namespace

TEST_F(EventsTest, EachReachesItsCallbackOnTheServersThread) {
    EXPECT_EQ(linesFor(kAllSlots, everyEvent(), KNOWN_EVENT_COUNT),
              with(everyLine(), kAllWaitedFor));
}

TEST_F(EventsTest, EmptyTextsArriveEmpty) {
    std::string packets;
    Lines lines;
    for (const KnownEvent& event : knownEvents()) {
        packets += eventPacket(event, wordsOf(event, "", 0));
        lines.push_back(hostLine(event, wordsOf(event, "", 0)));
    }
    EXPECT_EQ(linesFor(kAllSlots, packets, KNOWN_EVENT_COUNT), with(lines, kAllWaitedFor));
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
    EXPECT_EQ(linesFor(kAllSlots, packets, KNOWN_EVENT_COUNT), with(lines, kAllWaitedFor));
}

TEST_F(EventsTest, AFinishedImageAnnouncesTheInstanceListFirst) {
    EXPECT_EQ(linesFor(kAllSlots, installImageProgressPacket("Nougat32", 2, 100), 2),
              (Lines{"instanceListUpdated", "installImageProgress Nougat32|2|100.000", "waited 2",
                     "fini 0"}));
}

TEST_F(EventsTest, ASlotThatIsNullIsPassedOver) {
    // Slot 9; slots 4 and 9: without slot 3, slot 4 is not called either.
    for (const char* mask : {"256", "264"}) {
        EXPECT_EQ(linesFor(mask, everyEvent(), 1),
                  (Lines{lineOf("account-list-updated"), "waited 1", "fini 0"}));
    }
}

TEST_F(EventsTest, Slot3WithoutSlot4EndsTheHostAtAListUpdate) {
    EXPECT_EQ(linesFor("4", instanceListUpdatedPacket(), 1, kFatalStatus), Lines{});
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
    ChildProcess host = startServing({"quiet", "register", kAllSlots},
                                     with(waitAndNote(kWarmUps * calls, calls), {"fini"}));
    Lines errors;
    int sent = 0;
    const auto sendAll = [&] {
        for (const std::string& packet : odd.packets) {
            RawPipe pipe(connectToHelper());
            send(pipe, packet);
        }
        errors = with(errors, odd.errors);
        EXPECT_TRUE(waitForErrors(errors.size()));
        RawPipe pipe(connectToHelper());
        send(pipe, appDisplayedPacket("good", "one"));
        return sent += calls;
    };
    const auto warmUp = [&] {
        for (int i = 0; i < kWarmUps; ++i) sendAll();
        return sent;
    };
    const Lines lines = linesOfBatches(host, warmUp, sendAll);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_LT(bytesOfABatch("steady", lines[1]), 16 * static_cast<long>(odd.packets.size()));
    EXPECT_EQ(lines[2], "fini 0");
    std::sort(errors.begin(), errors.end());
    Lines logged = loggedErrors();
    std::sort(logged.begin(), logged.end());
    EXPECT_EQ(logged, errors);
}

TEST_F(EventsTest, ALengthBelowTheHeaderEndsTheHostWithItsLines) {
    for (const std::uint32_t length : {0u, 11u, 0x8000000Cu, 0xFFFFFFFFu}) {
        const std::string packet = bytesOf(3003u) + bytesOf(length) + bytesOf(0u);
        EXPECT_EQ(linesFor(kAllSlots, packet, 1, kFatalStatus), Lines{});
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
    send(pipe, everyEvent());
    Lines expected;
    for (const std::string& line : everyLine()) {
        expected.push_back("inside: read 5, set 0, list 1, commit 0, to a file 0");
        expected.push_back("inside: launched " + std::to_string(2 * kPrograms) +
                           ", asked 0, apps 1, ended 0");
        expected.push_back(line);
    }
    EXPECT_EQ(restOf(host), with(expected, kAllWaitedFor));
    const std::string last = std::to_string(100 + KNOWN_EVENT_COUNT - 1);
    const std::string isEven = last.find_last_of("02468") + 1 == last.size() ? "1" : "0";
    for (const char* file : {"vantrel.conf", "Inside.conf"}) {
        for (const std::string& value :
             {"vtr.instance.Nougat64.dpi=\"" + last, "vtr.enable_statusbar=\"" + isEven,
              "vtr.locale=\"place " + last, "vtr.shared_folders=\"place " + last}) {
            EXPECT_NE(data.read(file).find(value + "\"\n"), std::string::npos) << file << value;
        }
    }
}

TEST_F(EventsTest, ACallbackThatBlocksDelaysTheOthersAndLosesNone) {
    const std::string goOn = data / "go-on";
    ChildProcess host = startServing({"blockuntil", goOn, "register", "128"},
                                     {"waitbegun", "1", "wait", "3", "fini"});
    RawPipe first(connectToHelper());
    RawPipe second(connectToHelper());
    send(first, appDisplayedPacket("1", "a") + appDisplayedPacket("2", "b"));
    EXPECT_EQ(host.readLine(), "waited 1");
    send(second, appDisplayedPacket("3", "c"));
    writeBytes(goOn, "");
    const Lines lines = restOf(host);
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "appDisplayed 3|c"), 1);
    const auto a = std::find(lines.begin(), lines.end(), "appDisplayed 1|a");
    EXPECT_NE(std::find(a, lines.end(), "appDisplayed 2|b"), lines.end());
}

TEST_F(EventsTest, TheEndWaitsForACallbackThatRuns) {
    ChildProcess host =
        startServing({"block", "500", "register", "128"}, {"waitbegun", "1", "fini"});
    RawPipe pipe(connectToHelper());
    send(pipe, appDisplayedPacket("1", "a"));
    EXPECT_EQ(restOf(host), (Lines{"waited 1", "appDisplayed 1|a", "fini 0"}));
}

TEST_F(EventsTest, ASecondHostOfANameLogsAnErrorAndTheFirstGetsTheEvents) {
    ChildProcess first = startServing({"register", "128"}, {"wait", "1", "fini"});
    ChildProcess second = startHost({"register", "128", "fini"});
    EXPECT_EQ(restOf(second), Lines{"fini 0"});
    EXPECT_EQ(loggedErrors(), Lines{logged::byHelper(logged::notListening(
                                  kHelperServer, "8(QLocalServer::listen: Address in use)"))});
    RawPipe pipe(connectToHelper());
    send(pipe, appDisplayedPacket("1", "a"));
    EXPECT_EQ(restOf(first), (Lines{"appDisplayed 1|a", "waited 1", "fini 0"}));
}

TEST_F(EventsTest, TheLastInitialisationNamesTheServer) {
    EXPECT_EQ(asHelper({"initex", "Installer", "1", data / "own.log", "register", kAllSlots,
                        "served", "Installer", "fini"}),
              (Lines{"initex 0", "served", "fini 0"}));
}

TEST_F(EventsTest, AnInitialisationThatIsRefusedNamesNoServer) {
    EXPECT_EQ(asHelper({"initex", "installer", "1", data / "own.log", "register", kAllSlots,
                        "served", "Helper", "fini"}),
              (Lines{"initex 22", "served", "fini 0"}));
}

TEST_F(EventsTest, AHostThatDoesNotFinishEndsCleanly) {
    for (const char* way : {"exit", "exitthread"}) {
        SCOPED_TRACE(way);
        ChildProcess host = startServing({"register", "128"}, {"wait", "1", way});
        RawPipe open(connectToHelper());
        RawPipe half(connectToHelper());
        send(half, "abc");
        send(open, appDisplayedPacket("1", "a"));
        EXPECT_EQ(restOf(host), (Lines{"appDisplayed 1|a", "waited 1"}));
    }
}

TEST_F(EventsTest, AHostsDllThatFinishesWhileTheProcessEndsDoesNotBlockIt) {
    ChildProcess host =
        startServing({"register", "128"}, {"plugin", builtProgram("late_plugin.dll"), "wait", "1"});
    EXPECT_EQ(host.readLine(), "plugin 1");
    RawPipe open(connectToHelper());
    send(open, appDisplayedPacket("1", "a"));
    EXPECT_EQ(restOf(host), (Lines{"appDisplayed 1|a", "waited 1"}));
}

// Uses the library in every other cycle between load and unload.
TEST_F(EventsTest, TheLibraryIsLoadedUsedAndUnloadedAgainAndAgain) {
    const std::string player = "Life" + std::to_string(::GetCurrentProcessId());
    const std::string request = packetOf(2000, bytesOf(0u));
    std::atomic<int> asked{0};
    RawServer server("vtr_plr_" + player + "_nvo",
                     [&](RawPipe& pipe) { asked += pipe.readAll() == request; });
    const int cycles = proofSize(100, 10'000);
    const int all = 20 + cycles;
    const int used = all / 2;
    const int bytesOfALife = proofSize(32, 8);
    const Lines lines = output({"loadunload", copyOfLibrary(), std::to_string(cycles), player});
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "lives " + std::to_string(all) + ", events " + std::to_string(used));
    const long kept = bytesOfABatch("lives", lines[1]) - bytesOfABatch("control", lines[2]);
    EXPECT_LT(kept, bytesOfALife * cycles / GROWTH_BATCHES) << lines[1] << ", " << lines[2];
    EXPECT_TRUE(waitUntil([&] { return server.served() >= used; }));
    EXPECT_EQ(server.served(), used);
    EXPECT_EQ(asked, used);
    const std::string last = "vtr.locale=\"life " + std::to_string(all - 2) + "\"\n";
    EXPECT_NE(data.read("vantrel.conf").find(last), std::string::npos);
}

TEST_F(EventsTest, AnUnloadWithoutTheEndLeavesTheServerRunning) {
    EXPECT_EQ(output({"loadonly", copyOfLibrary(), "served", "Installer"}),
              (Lines{"init 0", "unloaded 0", "served"}));
}

TEST_F(EventsTest, TenThousandEventsArriveInOrderAndLeaveNothingBehind) {
    const int warmUp = 500;
    const int batch = proofSize(10'000, 1'000'000) / GROWTH_BATCHES;
    ChildProcess host = startServing({"quiet", "register", "128"},
                                     with(waitAndNote(warmUp, batch), {"fini", "digest"}));
    std::uint32_t sum = kSumOfNothing;
    int sent = 0;
    const auto sendEvents = [&](int count) {
        RawPipe pipe(connectToHelper());
        std::string packets;
        for (const int end = sent + count; sent < end; ++sent) {
            const std::string number = std::to_string(sent);
            packets += appDisplayedPacket("N", number);
            sum = addToSum(sum, "appDisplayed N|" + number + "\n");
            if (packets.size() < 32'000 && sent + 1 < end) continue;
            send(pipe, packets);
            packets.clear();
        }
        return sent;
    };
    const Lines lines = linesOfBatches(
        host, [&] { return sendEvents(warmUp); }, [&] { return sendEvents(batch); });
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_LT(bytesOfABatch("steady", lines[1]), batch);
    EXPECT_EQ(lines[2], "fini 0");
    EXPECT_EQ(lines[3], "digest " + std::to_string(sum));
}
