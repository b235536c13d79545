// `bridgectl events` with the real library and events from the real stand-ins.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <algorithm>
#include <cstdio>
#include <regex>
#include <string>

#include "ProgramFixture.h"
#include "support/EventPackets.h"
#include "support/RawServer.h"
#include "support/Subprocess.h"
#include "support/WindowsForTests.h"

namespace {

const std::string kServer = "vtr_LogCollector_bridge_nvo";
const std::string kListening = "bridgectl: listening on " + kServer;

Lines linesOf(const std::string& text) {
    Lines lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

// Whether a text begins with a time like "2024-03-07T14:05:09.042+05:30".
bool beginsWithTime(const std::string& text) {
    const std::string form = "####-##-##T##:##:##.###+##:##";
    for (std::size_t i = 0; i < form.size(); ++i) {
        const char c = i < text.size() ? text[i] : '\0';
        const bool fits = form[i] == '#'   ? c >= '0' && c <= '9'
                          : form[i] == '+' ? c == '+' || c == '-'
                                           : c == form[i];
        if (!fits) return false;
    }
    return true;
}

constexpr std::size_t kTimeLength = 29;

// The members of a JSON object after its time.
std::string withoutTime(const std::string& line) {
    const std::string opening = "{\"time\":\"";
    const std::size_t start = opening.size() + kTimeLength + 2;
    const bool fits = line.rfind(opening, 0) == 0 && beginsWithTime(line.substr(opening.size())) &&
                      line.substr(start - 2, 2) == "\"," && line.back() == '}';
    EXPECT_TRUE(fits) << line;
    return fits ? line.substr(start, line.size() - start - 1) : line;
}

Lines eventsOf(const std::string& output) {
    Lines lines = linesOf(output);
    for (std::string& line : lines) line = withoutTime(line);
    return lines;
}

// The example of an event in the form of withoutTime(). Its texts need no escapes except for
// backslashes.
std::string jsonOf(const KnownEvent& event) {
    std::string line = "\"event\":\"" + event.name + "\"";
    for (const KnownField& field : event.fields) {
        line += ",\"" + field.name + "\":";
        if (field.type == 't') {
            line += "\"" + std::regex_replace(field.example, std::regex(R"(\\)"), R"(\\)") + "\"";
        } else if (field.type == 'b') {
            line += field.example == "0" ? "false" : "true";
        } else {
            line += field.example;
        }
    }
    return line;
}

class BridgectlEventsTest : public BridgectlFixture {
 protected:
    BridgectlEventsTest() {
        data.write("vantrel.conf", "vtr.instance.Nougat64.dpi=\"240\"\n");
        setScript("");
    }

    static Lines arguments(const Lines& more) {
        return joined({"--client", "LogCollector", "events"}, more);
    }

    ChildProcess listen(const Lines& more) const {
        return BridgectlFixture::listen(joined({"events"}, more));
    }

    // Sets the script, and the seconds without a request after which the programs of start() end.
    void setScript(const std::string& script, const std::string& seconds = "1") {
        useStandins("LogCollector", seconds);
        options.environment.emplace_back("QX_STANDIN_SCRIPT", data.write("script", script));
    }

    // Starts a program of the product through the library, as a front end does.
    void start(const Lines& command) const { EXPECT_EQ(run(command).status, 0u); }

    // Shuts down the programs that start() has started, and waits for their end.
    void shutDown(std::size_t count) const {
        start({"shutdown"});
        std::size_t ended = 0;
        for (int i = 0; i < 400 && ended < count; ++i) {
            ::Sleep(10);
            const Lines lines = linesOf(data.read("standins.txt"));
            ended = static_cast<std::size_t>(std::count_if(
                lines.begin(), lines.end(),
                [](const std::string& line) { return line.rfind("ended: ", 0) == 0; }));
        }
        EXPECT_EQ(ended, count);
    }

    // Waits for the end of a listener and returns the events that the test has not read.
    static Lines finish(ChildProcess& listener) {
        const ChildResult result = listener.finish();
        EXPECT_EQ(result.status, 0u) << result.err;
        EXPECT_EQ(result.err, kListening + "\n");
        return eventsOf(result.out);
    }
};

}  // namespace

TEST_F(BridgectlEventsTest, ShowsEveryEvent) {
    ChildProcess listener = listen({"--json", "--count", std::to_string(knownEvents().size())});
    Lines expected;
    for (const KnownEvent& event : knownEvents()) {
        Lines words = exampleOf(event);
        words.insert(words.begin(), event.name);
        send(words);
        expected.push_back(jsonOf(event));
    }
    EXPECT_EQ(finish(listener), expected);
}

TEST_F(BridgectlEventsTest, LinesArriveAsTheyWereSent) {
    setScript("event app-displayed \"a # \xFF\" \"\x1B[31m\xC2\x9B\"");
    ChildProcess listener = listen({"--json", "--count", "4"});
    send({"app-displayed", "Jeux 日本 \xF0\x9F\x8E\xAE", "say \"hi\" \\ there\\"});
    send({"app-displayed", "", ""});
    send({"app-installed", "", "", "", "", "-2147483648", "", "", "false"});
    EXPECT_EQ(runChild(standinProgram("QX-Player.exe"), {"--instance", "Script"}, options).status,
              0u);
    EXPECT_EQ(finish(listener),
              (Lines{"\"event\":\"app-displayed\",\"instance\":\"Jeux 日本 \xF0\x9F\x8E\xAE\","
                     R"("package":"say \"hi\" \\ there\\")",
                     R"("event":"app-displayed","instance":"","package":"")",
                     R"("event":"app-installed","instance":"","package":"","activity":"",)"
                     R"("appLabel":"","versionCode":-2147483648,"versionName":"",)"
                     R"("iconFilePath":"","isUpdate":false)",
                     "\"event\":\"app-displayed\",\"instance\":\"a # \xEF\xBF\xBD\","
                     R"("package":"\u001b[31m\u009b")"}));
}

TEST_F(BridgectlEventsTest, LinesAreReadable) {
    ChildProcess listener = listen({"--count", "1"});
    send({"apk-install-completed", "N", "0", "C:\\a b.apk"});
    const ChildResult result = listener.finish();
    EXPECT_EQ(result.status, 0u);
    EXPECT_TRUE(beginsWithTime(result.out)) << result.out;
    EXPECT_EQ(result.out.substr(kTimeLength),
              " apk-install-completed instance=\"N\" status=0 apkFilePath=\"C:\\\\a b.apk\"\n");
}

TEST_F(BridgectlEventsTest, EachLineIsPrintedAtOnce) {
    ChildProcess listener = listen({"--json"});
    send({"app-displayed", "N", "p"});
    EXPECT_EQ(withoutTime(listener.readLine()),
              R"("event":"app-displayed","instance":"N","package":"p")");
}

TEST_F(BridgectlEventsTest, EachCommandReportsItsWork) {
    setScript("", /*seconds=*/"60");  // shutDown() ends them
    ChildProcess listener = listen({"--json", "--count", "11"});
    start({"launch", "Nougat64", "com.a"});
    EXPECT_EQ(withoutTime(listener.readLine()),
              R"("event":"app-displayed","instance":"Nougat64","package":"com.a")");
    start({"install-apk", "Nougat64", "C:\\d\\com.b.apk"});
    EXPECT_EQ(withoutTime(listener.readLine()),
              R"("event":"app-installed","instance":"Nougat64","package":"com.b",)"
              R"("activity":"com.b.MainActivity","appLabel":"com.b","versionCode":1,)"
              R"("versionName":"1.0","iconFilePath":"","isUpdate":false)");
    EXPECT_EQ(withoutTime(listener.readLine()),
              R"("event":"apk-install-completed","instance":"Nougat64","status":0,)"
              R"("apkFilePath":"C:\\d\\com.b.apk")");
    start({"uninstall", "Nougat64", "com.b"});
    EXPECT_EQ(withoutTime(listener.readLine()),
              R"("event":"app-uninstalled","instance":"Nougat64","package":"com.b")");
    start({"install-image", "Nougat32"});
    for (const char* part : {"25.0", "50.0", "75.0"}) {
        EXPECT_EQ(withoutTime(listener.readLine()),
                  std::string(R"("event":"image-install-progress","imageName":"Nougat32",)"
                              R"("status":1,"progress":)") +
                      part);
    }
    EXPECT_EQ(withoutTime(listener.readLine()), R"("event":"instance-list-updated")")
        << "an image that is installed changes the list, and the library says so first";
    EXPECT_EQ(withoutTime(listener.readLine()),
              R"("event":"image-install-progress","imageName":"Nougat32","status":2,)"
              R"("progress":100.0)");
    start({"create-instance", "Nougat64", "4", "4096", "aga", "dx", "s21u"});
    EXPECT_EQ(finish(listener),
              (Lines{R"("event":"create-instance-completed","status":0,"instance":"Nougat64_1")",
                     R"("event":"instance-list-updated")"}));
    shutDown(2);
}

TEST_F(BridgectlEventsTest, AMisbehavingSenderDoesNotHideTheNextEvent) {
    const std::string first = R"("event":"app-displayed","instance":"N","package":"p")";
    const std::string next = R"("event":"app-uninstalled","instance":"N","package":"p")";
    const struct {
        const char* script;
        Lines shown;
    } cases[] = {{"event-split 5", {first, next}},
                 {"event-garbage 40", {first, next}},
                 {"event-close-early", {next}}};
    for (const auto& [script, shown] : cases) {
        SCOPED_TRACE(script);
        ChildProcess listener = listen({"--json", "--count", std::to_string(shown.size())});
        setScript(script);
        send({"app-displayed", "N", "p"});
        setScript("");
        send({"app-uninstalled", "N", "p"});
        EXPECT_EQ(finish(listener), shown);
    }
}

TEST_F(BridgectlEventsTest, AFloodArrivesInOrder) {
    setScript("event-flood 1000 create-instance-completed {n} N{n}");
    ChildProcess listener = listen({"--json", "--count", "1000"});
    ChildProcess player(standinProgram("QX-Player.exe"), {"--instance", "Flood"}, options);
    const Lines events = finish(listener);
    ASSERT_EQ(events.size(), 1000u);
    for (std::size_t i = 0; i < events.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        ASSERT_EQ(events[i], R"("event":"create-instance-completed","status":)" + number +
                                 R"(,"instance":"N)" + number + "\"");
    }
}

TEST_F(BridgectlEventsTest, TheCountEndsIt) {
    setScript("event-flood 5 create-instance-completed {n} N");
    ChildProcess listener = listen({"--json", "--count", "2"});
    ChildProcess player(standinProgram("QX-Player.exe"), {"--instance", "Count"}, options);
    EXPECT_EQ(finish(listener),
              (Lines{R"("event":"create-instance-completed","status":1,"instance":"N")",
                     R"("event":"create-instance-completed","status":2,"instance":"N")"}));
}

TEST_F(BridgectlEventsTest, OnlyTheFilteredEventsAreShownAndCounted) {
    ChildProcess listener =
        listen({"--json", "--count", "3", "--filter", "app-displayed,instance-list-updated",
                "--filter", "account-list-updated"});
    send({"app-uninstalled", "N", "p"});
    send({"app-displayed", "N", "p"});
    send({"create-instance-completed", "0", "N"});
    send({"account-list-updated", "N", "e", "1"});
    send({"image-install-progress", "N", "2", "100"});
    EXPECT_EQ(finish(listener),
              (Lines{R"("event":"app-displayed","instance":"N","package":"p")",
                     R"("event":"account-list-updated","instance":"N","emailId":"e","action":1)",
                     R"("event":"instance-list-updated")"}));
}

TEST_F(BridgectlEventsTest, ATimeoutEndsTheWaitForACount) {
    ChildProcess listener = listen({"--json", "--count", "3", "--timeout", "1"});
    const ChildResult result = listener.finish();
    EXPECT_EQ(result.status, 9u);
    EXPECT_EQ(result.out, R"({"code":9,"name":"Timeout","text":"0 of 3 events","hint":null})"
                          "\n");
    EXPECT_EQ(result.err, kListening + "\nbridgectl: 0 of 3 events\n");
}

TEST_F(BridgectlEventsTest, ATimeoutAloneIsANormalEnd) {
    ChildProcess listener = listen({"--json", "--timeout", "2"});
    ASSERT_TRUE(RawPipe(connectWhenFree(kServer)).write(appDisplayedPacket("N", "p")));
    const ChildResult result = listener.finish();
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(eventsOf(result.out),
              Lines{R"("event":"app-displayed","instance":"N","package":"p")"});
    EXPECT_EQ(result.err, kListening + "\nbridgectl: 1 event\n");
}

TEST_F(BridgectlEventsTest, MisuseIsExplained) {
    const struct {
        Lines words;
        const char* part;
    } cases[] = {
        {{"--filter", "app-displayed,app-shown"}, "app-shown"},
        {{"--filter", ""}, "--filter"},
        {{"--count", "0"}, "--count"},
        {{"--count", "x"}, "--count"},
        {{"--timeout", "0"}, "--timeout"},
        {{"app-displayed"}, "app-displayed"},
    };
    for (const auto& [words, part] : cases) {
        const ChildResult result = run(arguments(words));
        EXPECT_EQ(result.status, 2u) << part;
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(part), std::string::npos) << result.err;
    }
    const ChildResult result = run(arguments({"--filter", "app-shown"}));
    for (const KnownEvent& event : knownEvents()) {
        EXPECT_NE(result.err.find(event.name), std::string::npos) << result.err;
    }
}

TEST_F(BridgectlEventsTest, ANameInUseIsAnError) {
    const std::string error = "bridgectl: another front end serves " + kServer + ": see --client\n";
    ChildProcess listener = listen({"--count", "1"});
    ChildResult second = run(arguments({}));
    EXPECT_EQ(second.status, 10u);
    EXPECT_EQ(second.err, error);
    send({"app-displayed", "N", "p"});
    EXPECT_EQ(listener.finish().status, 0u) << "the first one goes on";
    const RawServer other(kServer, [](RawPipe&) {});
    EXPECT_EQ(run(arguments({})).err, error);
}

TEST_F(BridgectlEventsTest, AListenerReleasesTheName) {
    for (int i = 0; i < 3; ++i) {
        ChildProcess listener = listen({"--count", "1"});
        send({"app-displayed", "N", "p"});
        EXPECT_EQ(listener.finish().status, 0u);
    }
}

// A process with its own console, so that its Ctrl-C reaches no other process. It starts a listener
// there, sends an event, waits until the listener shows it, and presses Ctrl-C. Its output and
// status are the listener's, or kNoConsole if the system creates no console.
constexpr int kNoConsole = 97;

SUBPROCESS(pressesCtrlC) {
    ::FreeConsole();
    if (!::AllocConsole()) return kNoConsole;
    ChildProcess listener(productFile("bridgectl.exe"),
                          {"--client", "LogCollector", "events", "--json"});
    if (listener.readErrorLine() != kListening) return 96;
    const Lines event{"--event", "app-displayed", "N", "p"};
    if (runChild(arguments[0], event).status != 0) return 95;
    const std::string line = listener.readLine();
    ::SetConsoleCtrlHandler(nullptr, TRUE);  // not this process
    if (!::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) return kNoConsole;
    const ChildResult result = listener.finish();
    ::_setmode(::_fileno(stdout), _O_BINARY);
    ::_setmode(::_fileno(stderr), _O_BINARY);
    std::fputs((line + "\n" + result.out).c_str(), stdout);
    std::fputs(result.err.c_str(), stderr);
    return static_cast<int>(result.status);
}

TEST_F(BridgectlEventsTest, CtrlCEndsItWithTheCount) {
    const ChildResult result =
        runSubprocess("pressesCtrlC", {standinProgram("QX-Player.exe")}, options);
    if (result.status == kNoConsole) GTEST_SKIP() << "needs a system that gives a new console";
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(eventsOf(result.out),
              Lines{R"("event":"app-displayed","instance":"N","package":"p")"});
    EXPECT_EQ(result.err, kListening + "\nbridgectl: 1 event\n");
}

TEST_F(BridgectlEventsTest, ABrokenOutputEndsIt) {
    ChildProcess listener = listen({"--json"});
    listener.closeOutput();
    send({"app-displayed", "N", "p"});
    const ChildResult result = listener.finish();
    EXPECT_EQ(result.status, 11u);
    EXPECT_EQ(result.err, kListening + "\nbridgectl: standard output cannot be written\n");
}
