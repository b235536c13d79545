#include "StandinEvents.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "StandinDefaults.h"
#include "support/EventPackets.h"

namespace {

using Texts = std::vector<std::string>;

StandinEvent eventOf(const Texts& words) {
    std::string error;
    const auto event = standinParseEvent(words, error);
    if (!event) throw std::runtime_error(error);
    return *event;
}

std::string packetOf(const Texts& words) { return standinEncodeEvent(eventOf(words)); }

std::string errorOf(const Texts& words) {
    std::string error;
    EXPECT_FALSE(standinParseEvent(words, error));
    return error;
}

// The type of a field in the help.
std::string typeOf(const KnownField& field) {
    switch (field.type) {
        case 'i':
            return ":i32";
        case 'd':
            return ":double";
        case 'b':
            return ":bool";
        default:
            return "";
    }
}

// The default events of a command line, in the form of the output file.
Texts defaultsOf(const Texts& arguments) {
    Texts lines;
    for (const StandinEvent& event : standinDefaultEvents(arguments)) {
        const std::string line = standinDescribeEvent(event, {}, StandinFormat::Text);
        lines.push_back(line.substr(0, line.rfind(" -> ")));
    }
    return lines;
}

}  // namespace

TEST(StandinEvents, EachHasItsPacket) {
    for (const KnownEvent& event : knownEvents()) {
        Texts words = exampleOf(event);
        const std::string packet = eventPacket(event, words);
        words.insert(words.begin(), event.name);
        EXPECT_EQ(packetOf(words), packet) << event.name;
    }
}

TEST(StandinEvents, TextsAreSentUnchanged) {
    const std::string strange = "日本 \"q\" \\ \xFF\xFE\x01";
    EXPECT_EQ(packetOf({"app-displayed", "", strange}), appDisplayedPacket("", strange));
}

TEST(StandinEvents, NumbersReachTheirLimits) {
    EXPECT_EQ(packetOf({"apk-install-completed", "N", "2147483647", "f"}),
              apkInstallCompletedPacket("N", 2147483647, "f"));
    EXPECT_EQ(packetOf({"apk-install-completed", "N", "-2147483648", "f"}),
              apkInstallCompletedPacket("N", -2147483647 - 1, "f"));
    EXPECT_EQ(packetOf({"image-install-progress", "N", "1", "-1e300"}),
              installImageProgressPacket("N", 1, -1e300));
}

TEST(StandinEvents, AFlagIsAByte) {
    for (const char* yes : {"true", "1"}) {
        EXPECT_EQ(packetOf({"app-installed", "", "", "", "", "0", "", "", yes}).back(), '\1');
    }
    for (const char* no : {"false", "0"}) {
        EXPECT_EQ(packetOf({"app-installed", "", "", "", "", "0", "", "", no}).back(), '\0');
    }
}

TEST(StandinEvents, InvalidEventsAreRejected) {
    EXPECT_EQ(errorOf({}), "no event is named");
    EXPECT_EQ(errorOf({"app-Displayed", "N", "p"}), "no such event: app-Displayed");
    const std::string usage = "not the arguments of: app-displayed instance package";
    EXPECT_EQ(errorOf({"app-displayed", "N"}), usage);
    EXPECT_EQ(errorOf({"app-displayed", "N", "p", "x"}), usage);
    for (const char* number : {"", "x", "1x", " 1", "1.0", "2147483648", "-2147483649"}) {
        EXPECT_EQ(errorOf({"create-instance-completed", number, "N"}),
                  "not the arguments of: create-instance-completed status:i32 instance");
    }
    for (const char* number : {"", "x", "1x", " 1", "0,5"}) {
        EXPECT_EQ(errorOf({"image-install-progress", "N", "1", number}),
                  "not the arguments of: image-install-progress imageName status:i32 "
                  "progress:double");
    }
    EXPECT_EQ(errorOf({"app-installed", "", "", "", "", "0", "", "", "yes"}),
              "not the arguments of: app-installed instance package activity appLabel "
              "versionCode:i32 versionName iconFilePath isUpdate:bool");
}

TEST(StandinEvents, TheOutputShowsTheDelivery) {
    const StandinEvent event = eventOf({"image-install-progress", "N \"é\" \xFF", "1", "50"});
    EXPECT_EQ(standinDescribeEvent(event, {"s"}, StandinFormat::Text),
              "event image-install-progress(\"N \\\"é\\\" \xEF\xBF\xBD\",1,50.0) -> s");
    EXPECT_EQ(standinDescribeEvent(event, {"s", 9, true}, StandinFormat::Text),
              "event image-install-progress(\"N \\\"é\\\" \xEF\xBF\xBD\",1,50.0) -> s cut at 9 "
              "failed");
    const StandinEvent plain = eventOf({"instance-list-updated"});
    EXPECT_EQ(standinDescribeEvent(plain, {}, StandinFormat::Text),
              "event instance-list-updated() -> nobody");
    EXPECT_EQ(standinDescribeEvent(plain, {}, StandinFormat::Json),
              R"({"event":"instance-list-updated","arguments":[],"to":null})");
    EXPECT_EQ(standinDescribeEvent(plain, {"s", 6, true}, StandinFormat::Json),
              R"({"event":"instance-list-updated","arguments":[],"to":"s","cutAt":6,)"
              R"("failed":true})");
}

TEST(StandinEvents, TheHelpListsThemWithTheirFields) {
    std::string help;
    for (const KnownEvent& event : knownEvents()) {
        help += "    " + event.name;
        for (const KnownField& field : event.fields) help += " " + field.name + typeOf(field);
        help += "\n";
    }
    EXPECT_EQ(standinEventHelp(), help);
}

TEST(StandinDefaults, EachCommandReportsItsWork) {
    EXPECT_EQ(defaultsOf({"p", "--instance", "N", "--cmd", "launchApp", "--package", "com.a"}),
              Texts{R"(event app-displayed("N","com.a"))"});
    EXPECT_EQ(defaultsOf({"p", "--instance", "N", "--cmd", "uninstallApp", "--package", "com.a"}),
              Texts{R"(event app-uninstalled("N","com.a"))"});
    EXPECT_EQ(defaultsOf({"p", "--instance", "N", "--cmd", "installApk", "--filepath",
                          "C:\\d.x\\a.b.apk"}),
              (Texts{R"(event app-installed("N","a.b","a.b.MainActivity","a.b",1,"1.0","",false))",
                     R"(event apk-install-completed("N",0,"C:\\d.x\\a.b.apk"))"}));
    EXPECT_EQ(defaultsOf({"p", "--hidden", "--cmd", "installImage", "--imageName", "Pie64"}),
              (Texts{R"(event image-install-progress("Pie64",1,25.0))",
                     R"(event image-install-progress("Pie64",1,50.0))",
                     R"(event image-install-progress("Pie64",1,75.0))",
                     R"(event image-install-progress("Pie64",2,100.0))"}));
    EXPECT_EQ(defaultsOf({"p", "--hidden", "--cmd", "createFreshInstance", "--imageName", "Pie64",
                          "--cpu", "4"}),
              (Texts{R"(event create-instance-completed(0,"Pie64_1"))",
                     "event instance-list-updated()"}));
}

TEST(StandinDefaults, OtherCommandLinesReportNothing) {
    EXPECT_EQ(defaultsOf({"p", "--instance", "N", "--cmd", "launchUrl", "--url", "u"}), Texts{});
    EXPECT_EQ(defaultsOf({"p", "--instance", "N", "--cmd", "installApp", "--package", "a",
                          "--store", "s"}),
              Texts{});
    EXPECT_EQ(defaultsOf({"p", "--instance", "N"}), Texts{});
    EXPECT_EQ(defaultsOf({"p", "--cmd", "launchApp", "--package", "a"}), Texts{}) << "no instance";
    EXPECT_EQ(defaultsOf({"p", "--instance", "N", "--cmd", "dance"}), Texts{});
}

TEST(StandinDefaults, CommandsAndRequestsHaveNames) {
    for (const char* word : {"launchApp", "installApp", "launchUrl", "installApk", "uninstallApp",
                             "installImage", "createFreshInstance", "plrShutdownRpc",
                             "plrMnsOnAnyMacroChangedRpc", "mimCreateFreshInstanceRpc"}) {
        EXPECT_TRUE(standinIsCommand(word)) << word;
    }
    for (const char* word : {"", "launchapp", "shutdown"}) {
        EXPECT_FALSE(standinIsCommand(word)) << word;
    }
}
