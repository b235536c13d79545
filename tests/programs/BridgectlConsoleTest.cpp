// bridgectl on a console, under two code pages. Wine's console shows escape sequences where one of
// Windows follows them, so that its screen has the very text that was written; "<" stands for their
// first character.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "ProgramFixture.h"
#include "PseudoConsole.h"
#include "support/WindowsForTests.h"

namespace {

const std::string kTable =
    "INSTANCE  NAME       IMAGE     CPU  RAM   GRAPHICS  PROFILE\n"
    "Nougat64  Jeux 日本  Nougat64  0    4096  /\n";

class BridgectlConsoleTest : public BridgectlFixture,
                             public ::testing::WithParamInterface<unsigned> {
 protected:
    BridgectlConsoleTest() : console(GetParam()) {
        useStandins("LogCollector", "60");
        data.write("vantrel.conf",
                   "vtr.locale=\"fr\"\nvtr.instance.Nougat64.display_name=\"Jeux 日本\"\n"
                   "vtr.instance.Nougat64.ram=\"4096\"\n");
        ::SetEnvironmentVariableW(L"NO_COLOR", nullptr);
    }
    ~BridgectlConsoleTest() override { ::SetEnvironmentVariableW(L"NO_COLOR", nullptr); }

    void SetUp() override {
        if (console.followsSequences()) GTEST_SKIP() << "the screen has no sequences to compare";
    }

    // Everything that a program shows, on a screen that was empty, with its exit status.
    std::string shown(const Arguments& arguments, unsigned status) {
        console.start(program(), arguments);
        EXPECT_EQ(console.finish(), status);
        return visible(console.screen());
    }

    static std::string visible(std::string text) {
        for (char& c : text) c = c == '\x1b' ? '<' : c;
        return text;
    }

    PseudoConsole console;
};

// The screen without the times, which are a line's first 29 characters.
std::string withoutTimes(const std::string& text) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at) + 1;
        const bool hasTime = text.compare(at, 2, "20") == 0;
        result += text.substr(at + (hasTime ? 30 : 0), end - at - (hasTime ? 30 : 0));
        at = end;
    }
    return result;
}

std::string withoutSpaces(std::string text) {
    text.erase(
        std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\n'; }),
        text.end());
    return text;
}

}  // namespace

TEST_P(BridgectlConsoleTest, ATableHasItsHeadingInColourAndItsColumnsInLine) {
    EXPECT_EQ(shown({"instances"}, 0), "<[1m" + kTable.substr(0, kTable.find('\n')) + "<[0m" +
                                           kTable.substr(kTable.find('\n')));
}

TEST_P(BridgectlConsoleTest, NoColorTurnsTheColoursOff) {
    ::SetEnvironmentVariableW(L"NO_COLOR", L"1");
    EXPECT_EQ(shown({"instances"}, 0), kTable);
}

TEST_P(BridgectlConsoleTest, ThePipeHasTheSameTableWithoutColours) {
    EXPECT_EQ(output({"instances"}), kTable);
}

TEST_P(BridgectlConsoleTest, AnErrorHasItsNameInColour) {
    EXPECT_EQ(shown({"conf", "get", "vtr.日本"}, 3), "<[31mbridgectl:<[0m no such key: vtr.日本\n");
}

TEST_P(BridgectlConsoleTest, APipeGetsTheErrorInUtf8) {
    expectFailure({"conf", "get", "vtr.日本"}, 3, "no such key: vtr.日本");
}

TEST_P(BridgectlConsoleTest, TheDoctorHasItsProblemsInColour) {
    registry.set("Version", "1.0");
    const std::string piped = run({"doctor"}).out;
    const std::string mark = "problem:";
    ASSERT_EQ(piped.rfind(mark + " registry: \"Version\" is 1.0 ", 0), 0u) << piped;
    // Long lines go on in the screen's next row.
    EXPECT_EQ(withoutSpaces(shown({"doctor"}, 1)),
              withoutSpaces("<[31m" + mark + "<[0m" + piped.substr(mark.size())));
}

TEST_P(BridgectlConsoleTest, WatchDrawsItsScreenAgainAndEndsWithCtrlC) {
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
