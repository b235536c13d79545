// bridgectl on a console and through a pipe, under two code pages. Wine's console shows escape
// sequences where a console of Windows follows them, so its screen has the exact text that was
// written. "<" replaces their first character.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "ProgramFixture.h"
#include "PseudoConsole.h"
#include "support/EventPackets.h"
#include "support/RawServer.h"
#include "support/WindowsForTests.h"

namespace {

const std::string kTable =
    "INSTANCE  NAME       IMAGE     CPU  RAM   GRAPHICS  PROFILE\n"
    "Nougat64  Jeux 日本  Nougat64  0    4096  /\n";

std::string withoutSpaces(std::string text) {
    text.erase(
        std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\n'; }),
        text.end());
    return text;
}

class BridgectlConsoleTest : public BridgectlFixture,
                             public ::testing::WithParamInterface<unsigned> {
 protected:
    BridgectlConsoleTest() : console(GetParam()) {
        useStandins("LogCollector", "1");
        writeConfiguration();
        setVariable("NO_COLOR", nullptr);
        // For programs on the console. Programs with pipes use `options`.
        for (const auto& [name, value] : options.environment) setVariable(name, value.c_str());
    }
    ~BridgectlConsoleTest() override {
        setVariable("NO_COLOR", nullptr);
        for (const auto& [name, value] : options.environment) setVariable(name, nullptr);
    }

    void writeConfiguration() const {
        data.write("vantrel.conf",
                   "vtr.locale=\"fr\"\nvtr.instance.Nougat64.display_name=\"Jeux 日本\"\n"
                   "vtr.instance.Nougat64.ram=\"4096\"\n");
    }

    static void setVariable(const std::string& name, const char* value) {
        ::SetEnvironmentVariableW(wideForTests(name).c_str(),
                                  value == nullptr ? nullptr : wideForTests(value).c_str());
    }

    void SetUp() override {
        if (console.followsSequences()) GTEST_SKIP() << "the screen has no sequences to compare";
    }

    // Runs a program and returns the text that it adds to the screen.
    std::string shown(const Arguments& arguments, unsigned status) {
        const std::size_t before = console.screen().size();
        console.start(program(), arguments);
        EXPECT_EQ(console.finish(), status);
        return visible(console.screen().substr(before));
    }

    // Expects `text` on the console and in a pipe.
    void expectOutput(const Arguments& arguments, const std::string& text) {
        EXPECT_EQ(shown(arguments, 0), text);
        writeConfiguration();
        EXPECT_EQ(output(arguments), text);
    }

    // Expects these error lines, without the program's name, on the console and in a pipe.
    void expectError(const Arguments& arguments, unsigned status, const Lines& lines) {
        std::string coloured;
        std::string plain;
        for (const std::string& line : lines) {
            coloured += "<[31mbridgectl:<[0m " + line + "\n";
            plain += "bridgectl: " + line + "\n";
        }
        EXPECT_EQ(shown(arguments, status), coloured);
        const ChildResult piped = run(arguments);
        EXPECT_EQ(piped.status, status);
        EXPECT_EQ(piped.out, "");
        EXPECT_EQ(piped.err, plain);
    }

    static std::string visible(std::string text) {
        for (char& c : text) c = c == '\x1b' ? '<' : c;
        return text;
    }

    PseudoConsole console;
};

}  // namespace

TEST_P(BridgectlConsoleTest, ATableHasItsHeadingInColourAndItsColumnsInLine) {
    EXPECT_EQ(shown({"instances"}, 0), "<[1m" + kTable.substr(0, kTable.find('\n')) + "<[0m" +
                                           kTable.substr(kTable.find('\n')));
}

TEST_P(BridgectlConsoleTest, NoColorTurnsColoursOffAsAPipeDoes) {
    setVariable("NO_COLOR", "1");
    EXPECT_EQ(shown({"instances"}, 0), kTable);
    setVariable("NO_COLOR", nullptr);
    EXPECT_EQ(output({"instances"}), kTable);
}

TEST_P(BridgectlConsoleTest, AnErrorHasItsNameInColour) {
    expectError({"conf", "get", "vtr.日本"}, 3, {"no such key: vtr.日本"});
}

TEST_P(BridgectlConsoleTest, ConfUnsetShowsTheValueBeforeAndTheDefault) {
    expectOutput({"conf", "unset", "vtr.instance.Nougat64.display_name"},
                 "vtr.instance.Nougat64.display_name: Jeux 日本 -> Vantrel\n");
    EXPECT_EQ(output({"conf", "get", "vtr.instance.Nougat64.display_name"}), "Vantrel\n");
}

TEST_P(BridgectlConsoleTest, ConfUnsetRefusesAnEmptyNumber) {
    expectError({"conf", "unset", "vtr.instance.Nougat64.ram"}, 4,
                {"vtr.instance.Nougat64.ram has an empty default, which the library cannot store: "
                 "its type is i32",
                 "set it to a value: bridgectl conf set vtr.instance.Nougat64.ram 0"});
}

TEST_P(BridgectlConsoleTest, WaitShowsTheEventThatEndsIt) {
    const Arguments line{"--client", "LogCollector", "launch", "Nougat64", "com.日本", "--wait"};
    const std::string event = "app-displayed instance=\"Nougat64\" package=\"com.日本\"\n";
    EXPECT_EQ(withoutTimes(shown(line, 0)), event);
    EXPECT_EQ(withoutTimes(output(line)), event);
}

TEST_P(BridgectlConsoleTest, WaitShowsThatNoEventCame) {
    setVariable("QX_STANDIN_CLIENTS", "none");
    options.environment = {{"QX_STANDIN_CLIENTS", "none"}};
    expectError({"--client", "LogCollector", "launch", "Nougat64", "com.日本", "--wait", "1"}, 9,
                {"started, but no event reported the result in time"});
}

TEST_P(BridgectlConsoleTest, RecordedEventsAreShownAndWrittenAsUtf8) {
    const std::string file = data / "trace.script";
    const Arguments line{"--client", "LogCollector", "events", "--record", file, "--count", "1"};
    const std::string listening = "bridgectl: listening on " + kServer + "\n";
    const std::string event = "app-displayed instance=\"日本\" package=\"com.a\"\n";
    const std::string script =
        "# Recorded by bridgectl events --record.\nevent app-displayed \"日本\" \"com.a\"\n";

    console.start(program(), line);
    EXPECT_EQ(console.screenWith(kServer), listening);
    ASSERT_TRUE(RawPipe(connectWhenFree(kServer)).write(appDisplayedPacket("日本", "com.a")));
    EXPECT_EQ(console.finish(), 0u);
    EXPECT_EQ(withoutTimes(console.screen()), listening + event);
    EXPECT_EQ(data.read("trace.script"), script);

    ChildProcess piped = listen({"events", "--record", file, "--count", "1"});
    ASSERT_TRUE(RawPipe(connectWhenFree(kServer)).write(appDisplayedPacket("日本", "com.a")));
    const ChildResult result = piped.finish();
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.err, listening);
    EXPECT_EQ(withoutTimes(result.out), event);
    EXPECT_EQ(data.read("trace.script"), script);
}

TEST_P(BridgectlConsoleTest, ARecordThatCannotBeWrittenIsAnError) {
    data.makeFolder("日本");
    expectError({"events", "--record", data / "日本", "--count", "1"}, 13,
                {"cannot write " + data / "日本" + ": 13 XERR_ACCES"});
}

TEST_P(BridgectlConsoleTest, CompletionOffersTheSameWords) {
    expectOutput({"complete", "--", "--client"},
                 "Launcher\nInstaller\nLogCollector\nHelper\nUninstaller\n");
    data.makeFolder("Engine");
    data.makeFolder("Engine\\Nougat64");
    data.makeFolder("Engine\\Nougat64\\AppCache");
    data.write("Engine\\Nougat64\\AppCache\\AppCache.json", R"([{"package": "com.日本"}])");
    expectOutput({"complete", "--", "uninstall", "Nougat64", "--"}, "com.日本\n");
}

TEST_P(BridgectlConsoleTest, TheCompletionScriptsAreTheSame) {
    for (const char* shell : {"bash", "powershell"}) {
        SCOPED_TRACE(shell);
        const std::string script = output({"completion", shell});
        ASSERT_GT(script.size(), 300u);
        EXPECT_EQ(shown({"completion", shell}, 0), script);
    }
    expectError({"completion", "日本"}, 2,
                {"SHELL: must be one of bash, powershell, not \"日本\"",
                 "see bridgectl completion --help"});
}

TEST_P(BridgectlConsoleTest, TheDoctorShowsProblemsInColour) {
    registry.set("Version", "1.0");
    const std::string piped = run({"doctor"}).out;
    const std::string mark = "problem:";
    ASSERT_EQ(piped.rfind(mark + " registry: \"Version\" is 1.0, ", 0), 0u) << piped;
    // Long lines wrap on the screen.
    EXPECT_EQ(withoutSpaces(shown({"doctor"}, 1)),
              withoutSpaces("<[31m" + mark + "<[0m" + piped.substr(mark.size())));
}

TEST_P(BridgectlConsoleTest, WatchRedrawsItsScreenAndEndsWithCtrlC) {
    const std::string table =
        "<[H<[1mINSTANCE   NAME       PLAYER<[0m<[K\nNougat64   Jeux 日本  -<[K\n"
        "(manager)             -<[K\n<[K\n<[1mChanged settings:<[0m<[K\n";
    const std::string added = "instance-added instance=\"Nougat64\"<[K\n";
    const std::string first = "<[2J" + table + "<[K\n<[1mEvents:<[0m<[K\n" + added + "<[J";
    console.start(program(), {"--client", "LogCollector", "watch"});
    EXPECT_EQ(withoutTimes(visible(console.screenWith("\x1b[J"))), first + "\n");
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "de"}), "vtr.locale: fr -> de\n");
    const std::string second = table +
                               "value-changed key=\"vtr.locale\" before=\"fr\" after=\"de\""
                               "<[K\n<[K\n<[1mEvents:<[0m<[K\n" +
                               added + "<[J";
    EXPECT_EQ(withoutTimes(visible(console.screenWith("after=\"de\""))).rfind(first + "<[H", 0),
              0u);
    console.pressCtrlC();
    EXPECT_EQ(console.finish(), 0u);
    EXPECT_EQ(withoutTimes(visible(console.screen())), first + second + "\n");
}

INSTANTIATE_TEST_SUITE_P(CodePages, BridgectlConsoleTest, ::testing::Values(65001u, 850u));
