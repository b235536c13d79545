#ifndef BRIDGECTL_WATCH_H
#define BRIDGECTL_WATCH_H

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Event.h"
#include "shared/Console.h"
#include "shared/TextStyle.h"

// What `bridgectl watch` looks at, and how it shows that.

struct WatchedInstance {
    std::string displayName;
    bool isRunning = false;  // its player
};

struct WatchState {
    std::map<std::string, WatchedInstance> instances;
    bool managerIsRunning = false;
    std::map<std::string, std::string> values;  // of every key, in the form of the file
};

// The state that a configuration file describes; nothing runs in it.
WatchState watchedConfiguration(std::string_view content);

struct WatchChange {
    std::string name;  // "player-started"
    std::vector<std::pair<std::string, std::string>> fields;
};

// Instances that came and went, programs that started and ended, and values that changed. The
// values of an instance that came or went are no changes.
std::vector<WatchChange> changesBetween(const WatchState& before, const WatchState& after);

// One line with its line feed, in the form of an event's.
std::string changeText(const LocalTime& time, const WatchChange& change);
std::string changeJson(const LocalTime& time, const WatchChange& change);

// What the screen shows of the past, the newest at the end.
struct WatchHistory {
    std::vector<std::string> events;    // lines of events, and of programs and instances
    std::vector<std::string> settings;  // lines of values that changed

    void add(std::vector<std::string>& lines, const std::string& line);
};

// The whole screen, with the sequences that draw it over the one before: every line fits into the
// width, and all of them into the height as far as the instances leave room.
std::string watchScreen(const WatchState& state, const WatchHistory& history,
                        const ScreenSize& size, const TextStyle& style);

#endif
