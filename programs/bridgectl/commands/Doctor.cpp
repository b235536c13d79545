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
    "Diagnosis",
    "",
    "doctor",
    "Find problems that stop a front end from working",
    "Example: bridgectl doctor\n"
    "Example: bridgectl doctor --json\n"
    "The command prints a line for each check, and for each problem what to do about it. It\n"
    "checks the registry, folders, log, configuration, locks, servers, versions and files. It\n"
    "does not start the library. The exit code is 1 if there is a problem; a note is not a\n"
    "problem.\n"
    "\n"
    "Windows starts bridgectl.exe only if QX-Bridge.dll, Qt5Core.dll and Qt5Network.dll are\n"
    "in its folder. Otherwise a window names the missing DLL, and the exit status is\n"
    "0xC0000135. Restore the file or reinstall the product.",
    declare};
