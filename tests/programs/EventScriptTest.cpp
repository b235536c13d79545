// Recorded events as a script.
#include "EventScript.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "ipc/IpcEvent.h"

namespace {

Event eventAt(int milliseconds, const std::string& name, std::vector<EventValue> values) {
    const EventMoment moment{std::chrono::milliseconds(milliseconds)};
    for (const IpcEvent& kind : IPC_EVENT_ROWS) {
        if (kind.name == name) return {{}, &kind, std::move(values), moment};
    }
    ADD_FAILURE() << name;
    return {{}, IPC_EVENT_ROWS, {}, moment};
}

EventValue text(const std::string& value) { return value; }

Event displayed(int milliseconds, const std::string& package) {
    return eventAt(milliseconds, "app-displayed", {text("N"), text(package)});
}

Event progress(int milliseconds, int status, double value) {
    return eventAt(milliseconds, "image-install-progress", {text("N"), status, value});
}

Event listUpdate(int milliseconds) { return eventAt(milliseconds, "instance-list-updated", {}); }

}  // namespace

TEST(EventScript, TheFirstEventHasNoPause) {
    EventScript script;
    EXPECT_EQ(EventScript::start(), "# Recorded by bridgectl events --record.\n");
    EXPECT_EQ(script.add(displayed(5000, "p")), "event app-displayed \"N\" \"p\"\n");
    EXPECT_EQ(script.finish(), "");
}

TEST(EventScript, PausesAreTheTimeBetweenEvents) {
    EventScript script;
    script.add(displayed(100, "p"));
    EXPECT_EQ(script.add(displayed(350, "q")), "pause 250\nevent app-displayed \"N\" \"q\"\n");
    EXPECT_EQ(script.add(displayed(350, "r")), "event app-displayed \"N\" \"r\"\n");
    EXPECT_EQ(script.add(displayed(1350, "s")), "pause 1000\nevent app-displayed \"N\" \"s\"\n");
}

TEST(EventScript, TextsKeepTheirBytes) {
    EventScript script;
    EXPECT_EQ(script.add(displayed(0, "say \"hi\" C:\\ # \n\xFF")),
              "event app-displayed \"N\" \"say \\\"hi\\\" C:\\\\ # \\n\xFF\"\n");
}

TEST(EventScript, NumbersKeepTheirValue) {
    EventScript script;
    EXPECT_EQ(script.add(progress(0, -1, 0.1)), "event image-install-progress \"N\" -1 0.1\n");
    EXPECT_EQ(script.add(progress(0, 1, 1e300)), "event image-install-progress \"N\" 1 1e+300\n");
    EXPECT_EQ(script.add(eventAt(0, "app-installed",
                                 {text("N"), text("p"), text("a"), text("l"), -2147483647 - 1,
                                  text("v"), text(""), true})),
              "event app-installed \"N\" \"p\" \"a\" \"l\" -2147483648 \"v\" \"\" true\n");
}

TEST(EventScript, TheListUpdateOfTheLibraryIsLeftOut) {
    EventScript script;
    EXPECT_EQ(script.add(listUpdate(0)), "");
    EXPECT_EQ(script.add(progress(0, 2, 100)), "event image-install-progress \"N\" 2 100\n");
    EXPECT_EQ(script.add(listUpdate(10)), "");
    EXPECT_EQ(
        script.add(progress(30, 1, 50)),
        "pause 10\nevent instance-list-updated\npause 20\nevent image-install-progress \"N\" 1 "
        "50\n");
    EXPECT_EQ(script.add(listUpdate(40)), "");
    EXPECT_EQ(script.add(listUpdate(50)), "pause 10\nevent instance-list-updated\n");
    EXPECT_EQ(script.finish(), "pause 10\nevent instance-list-updated\n");
    EXPECT_EQ(script.finish(), "");
}
