#ifndef BRIDGECTL_EVENT_H
#define BRIDGECTL_EVENT_H

#include <chrono>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "ipc/IpcEvent.h"
#include "shared/JsonValue.h"

// Events in the form that the program prints.

std::vector<std::string> eventNames();

// A time of day on this machine.
struct LocalTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    int offset = 0;  // minutes that the local time is ahead of UTC
};

LocalTime localTimeNow();

// "2024-03-07T14:05:09.042+05:30"
std::string isoTime(const LocalTime& time);

using EventValue = std::variant<std::int32_t, bool, double, std::string>;

using EventMoment = std::chrono::steady_clock::time_point;

struct Event {
    LocalTime time;
    const IpcEvent* kind;
    std::vector<EventValue> values;  // one for each field of the kind
    EventMoment moment{};            // `time` on the steady clock
};

// A value as one line of JSON without control characters.
std::string jsonLine(const JsonValue& value);

// One line with its line feed: the time, the name and name=value for each field, or a JSON object
// with the same. Texts are quoted and escaped in both, so a sender cannot end the line or control
// the terminal. Bytes that are not UTF-8 become U+FFFD.
std::string eventText(const Event& event);
std::string eventJson(const Event& event);

#endif
