#include "Event.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "EventQueue.h"

namespace {

constexpr LocalTime kTime{2024, 3, 7, 4, 5, 9, 42, 330};
const std::string kTimeText = "2024-03-07T04:05:09.042+05:30";

Event numbered(int number) {
    return {kTime, EventKind::CreateInstanceCompleted, {{"status", number}, {"instance", "N"}}};
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
    const Event event{
        kTime,
        EventKind::AppInstalled,
        {{"instance", "Jeux 日本"}, {"versionCode", -5}, {"part", 0.5}, {"isUpdate", true}}};
    EXPECT_EQ(eventText(event), kTimeText +
                                    " app-installed instance=\"Jeux 日本\" versionCode=-5 part=0.5 "
                                    "isUpdate=true\n");
    EXPECT_EQ(eventJson(event), "{\"time\":\"" + kTimeText +
                                    "\",\"event\":\"app-installed\",\"instance\":\"Jeux 日本\","
                                    "\"versionCode\":-5,\"part\":0.5,\"isUpdate\":true}\n");
}

TEST(Event, AnEventWithoutFieldsIsItsName) {
    const Event event{kTime, EventKind::InstanceListUpdated, {}};
    EXPECT_EQ(eventText(event), kTimeText + " instance-list-updated\n");
    EXPECT_EQ(eventJson(event),
              "{\"time\":\"" + kTimeText + "\",\"event\":\"instance-list-updated\"}\n");
}

TEST(Event, TextsCannotReachTheTerminal) {
    const Event event{kTime,
                      EventKind::AppDisplayed,
                      {{"instance", "a\n\r\t\x1B[31m\x7F\xC2\x9B\xC2\xA0\xC3\xA9"},
                       {"package", "\"\\ \xFF\xC2"}}};
    EXPECT_EQ(eventText(event),
              kTimeText +
                  " app-displayed instance=\"a\\n\\r\\t\\u001b[31m\\u007f\\u009b\xC2\xA0é\" "
                  "package=\"\\\"\\\\ \xEF\xBF\xBD\xEF\xBF\xBD\"\n");
}

TEST(Event, EachKindHasAName) {
    const std::vector<std::string> names = eventNames();
    EXPECT_EQ(names.size(), 9u);
    EXPECT_EQ(names.front(), "app-installed");
    EXPECT_EQ(names.back(), eventName(EventKind::AccountListUpdated));
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
        ASSERT_EQ(std::get<std::int32_t>(event->fields[0].second), i);
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

TEST(EventQueue, WhatIsQueuedAtTheEndIsNotLost) {
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
