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

// The state that `bridgectl watch` shows, and how it shows it.

struct WatchedInstance {
    std::string displayName;
    bool isRunning = false;  // its player
};

struct WatchState {
    std::map<std::string, WatchedInstance> instances;
    bool managerIsRunning = false;
    std::map<std::string, std::string> values;  // of every key, in the form of the file
};

// The state that a configuration file describes, with no program running.
WatchState watchedConfiguration(std::string_view content);

struct WatchChange {
    std::string name;  // "player-started"
    std::vector<std::pair<std::string, std::string>> fields;
};

// Instances added or removed, programs started or ended, and values changed. Values of an added or
// removed instance do not count.
std::vector<WatchChange> changesBetween(const WatchState& before, const WatchState& after);

// One line with its line feed, in the same form as an event's line.
std::string changeText(const LocalTime& time, const WatchChange& change);
std::string changeJson(const LocalTime& time, const WatchChange& change);

// Past changes and events, newest last.
struct WatchHistory {
    std::vector<std::string> events;    // lines of events, and of programs and instances
    std::vector<std::string> settings;  // lines of values that changed

    void add(std::vector<std::string>& lines, const std::string& line);
};

// The whole screen with the escape sequences that draw it over the previous one. Every line fits
// the width. All lines fit the height unless there are too many instances.
std::string watchScreen(const WatchState& state, const WatchHistory& history,
                        const ScreenSize& size, const TextStyle& style);

#endif
