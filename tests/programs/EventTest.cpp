#include "Event.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "EventQueue.h"
#include "ipc/IpcEvent.h"
#include "support/EventPackets.h"

namespace {

constexpr LocalTime kTime{2024, 3, 7, 4, 5, 9, 42, 330};
const std::string kTimeText = "2024-03-07T04:05:09.042+05:30";

Event eventOf(const std::string& name, std::vector<EventValue> values) {
    const auto* const kind =
        std::find_if(std::begin(IPC_EVENT_ROWS), std::end(IPC_EVENT_ROWS),
                     [&name](const IpcEvent& event) { return event.name == name; });
    if (kind == std::end(IPC_EVENT_ROWS)) throw std::runtime_error(name);
    return {kTime, kind, std::move(values)};
}

Event numbered(int number) {
    return eventOf("create-instance-completed", {number, std::string("N")});
}

}  // namespace

TEST(Event, TheTimeIsIso8601) {
    EXPECT_EQ(isoTime(kTime), kTimeText);
    EXPECT_EQ(isoTime({2026, 12, 31, 23, 59, 59, 999, -210}), "2026-12-31T23:59:59.999-03:30");
    EXPECT_EQ(isoTime({2026, 1, 2, 3, 4, 5, 6, 0}), "2026-01-02T03:04:05.006+00:00");
}

TEST(Event, NowIsInOrder) {
    const std::string first = isoTime(localTimeNow());
    EXPECT_LE(first, isoTime(localTimeNow()));
    EXPECT_EQ(first.size(), kTimeText.size());
}

TEST(Event, ALineShowsEveryTypeOfField) {
    const std::string text = "Jeux 日本";
    const Event installed =
        eventOf("app-installed", {text, text, text, text, -5, text, text, true});
    EXPECT_EQ(
        eventText(installed),
        kTimeText +
            " app-installed instance=\"Jeux 日本\" package=\"Jeux 日本\" activity=\"Jeux 日本\" "
            "appLabel=\"Jeux 日本\" versionCode=-5 versionName=\"Jeux 日本\" "
            "iconFilePath=\"Jeux 日本\" isUpdate=true\n");
    const Event progress = eventOf("image-install-progress", {text, -5, 0.5});
    EXPECT_EQ(
        eventText(progress),
        kTimeText + " image-install-progress imageName=\"Jeux 日本\" status=-5 progress=0.5\n");
    EXPECT_EQ(eventJson(progress), "{\"time\":\"" + kTimeText +
                                       "\",\"event\":\"image-install-progress\",\"imageName\":"
                                       "\"Jeux 日本\",\"status\":-5,\"progress\":0.5}\n");
}

TEST(Event, AnEventWithoutFieldsIsItsName) {
    const Event event = eventOf("instance-list-updated", {});
    EXPECT_EQ(eventText(event), kTimeText + " instance-list-updated\n");
    EXPECT_EQ(eventJson(event),
              "{\"time\":\"" + kTimeText + "\",\"event\":\"instance-list-updated\"}\n");
}

TEST(Event, TextsCannotControlTheTerminal) {
    const Event event = eventOf(
        "app-displayed",
        {std::string("a\n\r\t\x1B[31m\x7F\xC2\x9B\xC2\xA0\xC3\xA9"), std::string("\"\\ \xFF\xC2")});
    EXPECT_EQ(eventText(event),
              kTimeText +
                  " app-displayed instance=\"a\\n\\r\\t\\u001b[31m\\u007f\\u009b\xC2\xA0é\" "
                  "package=\"\\\"\\\\ \xEF\xBF\xBD\xEF\xBF\xBD\"\n");
}

TEST(Event, TheNamesAreThoseOfTheProtocol) {
    std::vector<std::string> names;
    for (const KnownEvent& event : knownEvents()) names.push_back(event.name);
    EXPECT_EQ(eventNames(), names);
}

TEST(EventQueue, KeepsTheOrderOfAnotherThread) {
    EventQueue queue;
    std::thread writer([&queue] {
        for (int i = 0; i < 1000; ++i) queue.push(numbered(i));
    });
    EventQueue::End end;
    for (int i = 0; i < 1000; ++i) {
        const auto event = queue.take(std::nullopt, end);
        ASSERT_TRUE(event);
        ASSERT_EQ(std::get<std::int32_t>(event->values[0]), i);
    }
    writer.join();
    EXPECT_FALSE(queue.takeQueued());
}

TEST(EventQueue, WaitingEndsWithTheDeadlineOrWhenItIsStopped) {
    EventQueue queue;
    queue.push(numbered(1));
    auto end = EventQueue::End::Stopped;
    EXPECT_FALSE(queue.take(EventQueue::Clock::now(), end));
    EXPECT_EQ(end, EventQueue::End::TimedOut);
    std::thread stopper([&queue] { queue.stop(); });
    while (queue.take(std::nullopt, end)) {
    }
    stopper.join();
    EXPECT_EQ(end, EventQueue::End::Stopped);
}

TEST(EventQueue, QueuedEventsSurviveTheStop) {
    EventQueue queue;
    queue.push(numbered(1));
    queue.push(numbered(2));
    queue.stop();
    EventQueue::End end;
    EXPECT_FALSE(queue.take(std::nullopt, end));
    EXPECT_TRUE(queue.takeQueued());
    EXPECT_TRUE(queue.takeQueued());
    EXPECT_FALSE(queue.takeQueued());
}
