// bridgectl watch [--timeout SECONDS]
#include "Watch.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "Event.h"
#include "EventListening.h"
#include "EventQueue.h"
#include "EventServer.h"
#include "EventSource.h"
#include "Session.h"
#include "conf/ConfFiles.h"
#include "ipc/IpcName.h"
#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/OptionParser.h"
#include "utl/UtlFolders.h"

namespace {

using Clock = EventQueue::Clock;

// No event reports the start or end of a program, so the command polls.
constexpr std::chrono::seconds kBetweenLooks{1};

class Watcher {
 public:
    explicit Watcher(Session& session)
        : session_(session), size_(session.json ? std::nullopt : outputSize()) {}

    // These three return false after an error of the output.
    bool start() {
        look();
        WatchState nothing;
        nothing.values = state_.values;
        if (size_ && !session_.print("\x1b[2J")) return false;
        return show(changesBetween(nothing, state_)) && draw();
    }

    bool take(const Event& event) {
        const std::string line = session_.json ? eventJson(event) : eventText(event);
        history_.add(history_.events, line);
        if (!size_ && !session_.print(line)) return false;
        return lookAgain() && draw();
    }

    bool lookAgain() {
        const WatchState before = state_;
        look();
        const std::vector<WatchChange> changes = changesBetween(before, state_);
        return show(changes) && (changes.empty() || draw());
    }

 private:
    void look() {
        std::string content;
        // A file that is being replaced is read at the next look.
        const std::string path = utlGetDataDir() + "vantrel.conf";
        if (confDiskFiles().read(path, content) == ConfFileRead::Done) {
            state_ = watchedConfiguration(content);
        }
        for (auto& [name, instance] : state_.instances) {
            instance.isRunning = ipcNameIsServed(utlLocalObjectName("plr_" + name));
        }
        state_.managerIsRunning = ipcNameIsServed(utlLocalObjectName("mim"));
    }

    bool show(const std::vector<WatchChange>& changes) {
        const LocalTime now = localTimeNow();
        for (const WatchChange& change : changes) {
            const std::string line =
                session_.json ? changeJson(now, change) : changeText(now, change);
            const bool isValue = change.name == "value-changed";
            history_.add(isValue ? history_.settings : history_.events, line);
            if (!size_ && !session_.print(line)) return false;
        }
        return true;
    }

    bool draw() {
        if (!size_) return true;
        size_ = outputSize();  // the window may have been resized
        const ScreenSize size = size_.value_or(ScreenSize{});
        return session_.print(watchScreen(state_, history_, size, outputStyle()));
    }

    Session& session_;
    std::optional<ScreenSize> size_;  // empty: print lines instead of a screen
    WatchState state_;
    WatchHistory history_;
};

void run(Session& session, unsigned timeout) {
    EventServerProbe probe;
    if (!session.start() || !listenToEvents(session, probe)) return;
    const std::optional<Clock::time_point> deadline = eventDeadline(timeout);
    Watcher watcher(session);
    if (!watcher.start()) return;
    EventQueue::End end = EventQueue::End::TimedOut;
    for (;;) {
        const Clock::time_point next = Clock::now() + kBetweenLooks;
        const std::optional<Event> event =
            eventQueue().take(std::min(next, deadline.value_or(next)), end);
        if (!event && end == EventQueue::End::Stopped) return;
        if (!(event ? watcher.take(*event) : watcher.lookAgain())) return;
        if (deadline && Clock::now() >= *deadline) return;
    }
}

void declare(OptionParser& parser, Session& session) {
    const auto timeout = std::make_shared<unsigned>(0);
    parser.add("--timeout", *timeout, "End after this many seconds").between(1, 1'000'000);
    parser.onRun([&session, timeout] { run(session, *timeout); });
}

}  // namespace

extern const Command commandWatch;
const Command commandWatch{
    "Events",
    "",
    "watch",
    "Watch instances, events and settings on one screen",
    "Example: bridgectl watch\n"
    "On a terminal, the command redraws one screen at each event, and within a second when a\n"
    "program starts or ends or the configuration changes. Otherwise it prints a line for each\n"
    "change; with --json, the line is an object. Press Ctrl-C to end.",
    declare};
