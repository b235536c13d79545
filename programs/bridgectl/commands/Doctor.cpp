// bridgectl doctor
#include <algorithm>
#include <cstddef>
#include <string>

#include "Configuration.h"
#include "Session.h"
#include "doctor/Checks.h"
#include "doctor/Finding.h"
#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/OptionParser.h"
#include "shared/Table.h"

namespace {

void append(Findings& all, const Findings& more) {
    all.insert(all.end(), more.begin(), more.end());
}

Findings lookAtEverything(const Session& session) {
    Findings findings = registryFindings();
    append(findings, folderFindings(session.logPath()));
    std::string content;
    append(findings, confFileFindings(content));
    const Configuration configuration(content);
    append(findings, lockFindings(configuration));
    append(findings, serverFindings(configuration));
    append(findings, moduleFindings());
    return findings;
}

std::string lineOf(const Finding& finding, const TextStyle& style) {
    const std::string level = std::string(levelName(finding.level)) + ":";
    const std::string todo = finding.todo.empty() ? "" : "; " + finding.todo;
    return (finding.level == FindingLevel::Problem ? style.error(level) : level) + " " +
           withoutControls(finding.check + ": " + finding.found + todo) + "\n";
}

JsonValue jsonOf(const Findings& findings) {
    JsonArray array;
    for (const Finding& finding : findings) {
        array.push_back(
            JsonObject{{"level", levelName(finding.level)},
                       {"check", finding.check},
                       {"found", finding.found},
                       {"todo", finding.todo.empty() ? JsonValue(nullptr) : finding.todo}});
    }
    return array;
}

void run(Session& session) {
    const Findings findings = lookAtEverything(session);
    std::string text;
    for (const Finding& finding : findings) text += lineOf(finding, outputStyle());
    if (!(session.json ? session.printJson(jsonOf(findings)) : session.print(text))) return;
    const bool isFine = std::none_of(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.level == FindingLevel::Problem;
    });
    if (!isFine) session.exitCode = ExitCode::Found;
}

void declare(OptionParser& parser, Session& session) {
    parser.onRun([&session] { run(session); });
}

}  // namespace

extern const Command commandDoctor;
const Command commandDoctor{
    "", "doctor", "Looks for what keeps a front end from starting or working",
    "Example: bridgectl doctor --json\n"
    "A line for each thing that was looked at, with what to do about a problem: registry, "
    "folders,\nlog, configuration, locks, servers, versions and files. The library is not started. "
    "A note\nis no problem: the exit code is 1 when there is one, else 0.\n"
    "It needs QX-Bridge.dll, Qt5Core.dll and Qt5Network.dll beside bridgectl.exe. Without one of\n"
    "them Windows does not start it: a window says that the DLL was not found, and the exit "
    "status\nis 0xC0000135. Put the missing file back, or install the product again.",
    declare};
