#include "ProgramCommand.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "Event.h"
#include "EventListening.h"
#include "EventQueue.h"
#include "EventServer.h"
#include "EventSource.h"
#include "shared/ExitCode.h"
#include "shared/OptionParser.h"
#include "utl/UtlFolders.h"

namespace {

struct Arguments {
    ProgramTexts texts;
    std::optional<unsigned> wait;  // seconds; 0: no limit
};

void printOutcome(Session& session, const Event& event, Outcome outcome) {
    const std::string line = eventText(event);
    if (outcome == Outcome::Failure) {
        // The event's line without its time and line feed.
        const std::size_t start = line.find(' ') + 1;
        session.fail(ExitCode::Reported,
                     "the work failed: " + line.substr(start, line.size() - start - 1));
    } else if (!session.quiet) {
        session.print(session.json ? eventJson(event) : line);
    }
}

void waitForOutcome(Session& session, const Arguments& arguments, const ProgramCall& call) {
    const std::optional<EventQueue::Clock::time_point> deadline = eventDeadline(*arguments.wait);
    EventQueue::End end = EventQueue::End::Stopped;
    while (const std::optional<Event> event = eventQueue().take(deadline, end)) {
        const Outcome outcome = call.outcomeOf(*event, arguments.texts);
        if (outcome == Outcome::Unknown) continue;
        printOutcome(session, *event, outcome);
        return;
    }
    session.fail(ExitCode::Timeout, "started, but no event reported the result in time");
}

std::string startHint(bool isForInstance) {
    const char* const program = isForInstance ? "QX-Player.exe" : "QX-MultiInstanceManager.exe";
    return "the program is " + utlGetInstallDir() + program +
           "; its folder is in the registry: " + registryValueName("InstallDir") +
           "; see bridgectl doctor";
}

void run(Session& session, const Arguments& arguments, const ProgramCall& call,
         bool isForInstance) {
    if (!session.start()) return;
    if (isForInstance && !session.requireInstance(arguments.texts[0])) return;
    if (!session.requireInstallFolder()) return;
    EventServerProbe probe;
    if (arguments.wait && !listenToEvents(session, probe)) return;
    const int status = session.timed(call.function, [&] { return call.call(arguments.texts); });
    if (status != 0) {
        session.failStatus(ExitCode::Program, "not started", status, startHint(isForInstance));
    } else if (arguments.wait) {
        waitForOutcome(session, arguments, call);
    } else {
        session.confirm("started", JsonObject{{"started", true}});
    }
}

}  // namespace

void declareProgram(OptionParser& parser, Session& session,
                    const std::vector<ProgramArgument>& arguments, const ProgramCall& call) {
    const auto given = std::make_shared<Arguments>();
    given->texts.resize(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        parser.add(arguments[i].name, given->texts[i], arguments[i].help).required();
    }
    if (call.outcomeOf != nullptr) {
        parser.addWithOptionalNumber(
            "--wait", given->wait, "SECONDS",
            "Wait for the event that reports the result, forever by default");
    }
    const bool isForInstance = std::string_view(arguments.front().name) == "INSTANCE";
    parser.onRun(
        [&session, given, call, isForInstance] { run(session, *given, call, isForInstance); });
}
