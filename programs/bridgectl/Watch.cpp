#include "Watch.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "Configuration.h"
#include "conf/ConfKey.h"
#include "shared/DisplayWidth.h"
#include "shared/JsonValue.h"
#include "shared/Table.h"

namespace {

using Lines = std::vector<std::string>;

// More than any screen shows.
constexpr std::size_t kHistory = 200;

constexpr std::size_t kSettingsShown = 5;

// Clears the rest of the old line.
constexpr const char* kEndOfLine = "\x1b[K\n";

void addInstances(std::vector<WatchChange>& changes, const WatchState& before,
                  const WatchState& after) {
    for (const auto& [name, instance] : before.instances) {
        if (after.instances.count(name) > 0) continue;
        if (instance.isRunning) changes.push_back({"player-ended", {{"instance", name}}});
        changes.push_back({"instance-removed", {{"instance", name}}});
    }
    for (const auto& [name, instance] : after.instances) {
        const auto old = before.instances.find(name);
        const bool wasRunning = old != before.instances.end() && old->second.isRunning;
        if (old == before.instances.end()) {
            changes.push_back({"instance-added", {{"instance", name}}});
        }
        if (instance.isRunning == wasRunning) continue;
        const char* const change = wasRunning ? "player-ended" : "player-started";
        changes.push_back({change, {{"instance", name}}});
    }
}

void addValues(std::vector<WatchChange>& changes, const WatchState& before,
               const WatchState& after) {
    for (const auto& [key, value] : after.values) {
        const auto old = before.values.find(key);
        if (old == before.values.end() || old->second == value) continue;
        changes.push_back(
            {"value-changed", {{"key", key}, {"before", old->second}, {"after", value}}});
    }
}

// The longest prefix that fits, cut between characters.
std::string cutTo(const std::string& text, std::size_t columns) {
    std::size_t size = text.size();
    while (size > 0 && displayWidth(std::string_view(text).substr(0, size)) > columns) {
        do --size;
        while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80);
    }
    return text.substr(0, size);
}

std::vector<TableRow> instanceRows(const WatchState& state) {
    std::vector<TableRow> rows{{"INSTANCE", "NAME", "PLAYER"}};
    for (const auto& [name, instance] : state.instances) {
        rows.push_back({name, instance.displayName, instance.isRunning ? "running" : "-"});
    }
    rows.push_back({"(manager)", "", state.managerIsRunning ? "running" : "-"});
    return rows;
}

Lines linesOf(const std::string& text) {
    Lines lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

// Adds a heading and the newest lines.
void addSection(Lines& screen, const char* heading, const Lines& lines, std::size_t count) {
    screen.push_back("");
    screen.push_back(heading);
    const std::size_t shown = std::min(lines.size(), count);
    screen.insert(screen.end(), lines.end() - static_cast<std::ptrdiff_t>(shown), lines.end());
}

}  // namespace

WatchState watchedConfiguration(std::string_view content) {
    WatchState state;
    const Configuration configuration(content);
    for (const std::string& name : configuration.instances()) {
        const std::string key = confInstancePrefix(name) + "display_name";
        state.instances[name].displayName = configuration.find(key).value().text;
    }
    for (const KeyInfo& key : configuration.list()) state.values[key.key] = key.text;
    return state;
}

std::vector<WatchChange> changesBetween(const WatchState& before, const WatchState& after) {
    std::vector<WatchChange> changes;
    addInstances(changes, before, after);
    if (after.managerIsRunning != before.managerIsRunning) {
        changes.push_back({after.managerIsRunning ? "manager-started" : "manager-ended", {}});
    }
    addValues(changes, before, after);
    return changes;
}

std::string changeText(const LocalTime& time, const WatchChange& change) {
    std::string line = isoTime(time) + " " + change.name;
    for (const auto& [name, text] : change.fields) line += " " + name + "=" + jsonLine(text);
    return line + "\n";
}

std::string changeJson(const LocalTime& time, const WatchChange& change) {
    JsonObject object{{"time", isoTime(time)}, {"change", change.name}};
    for (const auto& [name, text] : change.fields) object.push_back({name, text});
    return jsonLine(object) + "\n";
}

void WatchHistory::add(std::vector<std::string>& lines, const std::string& line) {
    if (lines.size() == kHistory) lines.erase(lines.begin());
    lines.push_back(line.substr(0, line.find('\n')));
}

std::string watchScreen(const WatchState& state, const WatchHistory& history,
                        const ScreenSize& size, const TextStyle& style) {
    Lines lines = linesOf(formatTable(instanceRows(state)));
    const std::size_t settings = std::min(history.settings.size(), kSettingsShown);
    // Two sections with a heading and an empty line each, and the last line, which stays free.
    const std::size_t taken = lines.size() + settings + 5;
    addSection(lines, "Changed settings:", history.settings, settings);
    addSection(lines, "Events:", history.events, size.rows > taken ? size.rows - taken : 1);
    std::string screen = "\x1b[H";
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string line = cutTo(lines[i], size.columns - 1);
        const bool isHeading = i == 0 || line == "Changed settings:" || line == "Events:";
        screen += (isHeading ? style.heading(line) : line) + kEndOfLine;
    }
    return screen + "\x1b[J";
}
