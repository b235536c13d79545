#include "Runner.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <utility>

#include "Files.h"
#include "shared/Console.h"

namespace {

// Of the end of the output, where failures are.
constexpr std::size_t kShownBytes = 1500;
constexpr std::size_t kKeptBytes = std::size_t{8} << 20;
constexpr int kToolSeconds = 60;

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what)) {
        text.replace(at, what.size(), by);
    }
    return text;
}

// The program in PATH that a check needs; empty if it needs none.
std::string toolOf(const Check& check) {
    if (!check.tool.empty() || isOfKit(check.command.front())) return check.tool;
    return check.command.front();
}

bool isTestProgram(const Check& check) {
    return std::any_of(check.command.begin(), check.command.end(), [](const std::string& word) {
        return word.rfind("--gtest_filter=", 0) == 0;
    });
}

// How a process failed; empty if it did not.
std::string faultOf(const ProcessRun& run, int limit) {
    if (run.error != 0) return "cannot be started: error " + hexadecimal(run.error);
    if (run.isStopped) return "ended by the user";
    if (run.isLate) return "did not end within " + std::to_string(limit) + " s";
    if (run.status != 0) return "ended with the status " + hexadecimal(run.status);
    return {};
}

}  // namespace

Runner::Runner(RunnerOptions options, RunnerFolders folders, Conditions conditions)
    : options_(std::move(options)),
      folders_(std::move(folders)),
      conditions_(std::move(conditions)) {}

bool Runner::isWanted(const Check& check) const {
    const auto& only = options_.only;
    return only.empty() || std::find(only.begin(), only.end(), check.id) != only.end();
}

// Runs the tool to see whether it exists: Windows has a python.exe that only opens the store.
Obstacle Runner::obstacleOfTool(const std::string& name) const {
    const std::string program = programOnPath(name);
    if (program.empty()) return {Outcome::Skipped, "needs " + name + ".exe in PATH"};
    const std::string question = name == "dotnet" ? "--info" : "--version";
    const ProcessRun run =
        runProcess({program, question}, folders_.work, folders_.work / "tool.txt", kToolSeconds);
    const std::string fault = faultOf(run, kToolSeconds);
    if (fault.empty()) return {};
    return {Outcome::Skipped, name + ".exe in PATH " + fault};
}

bool Runner::isAccepted(const Check& check) const {
    if (!options_.questions) return false;
    printOut("\n" + check.id + ": " + check.decides + "\nRun it? [y/N] ");
    std::string answer;
    return std::getline(std::cin, answer) && !answer.empty() &&
           (answer[0] == 'y' || answer[0] == 'Y');
}

Obstacle Runner::obstacleFor(const Check& check) const {
    const Obstacle obstacle = obstacleOf(check, conditions_);
    if (obstacle.outcome != Outcome::Passed) return obstacle;
    if (check.has("prompt") && !isAccepted(check)) {
        return {Outcome::Skipped, "declined, or not asked because of --no-questions"};
    }
    const std::string tool = toolOf(check);
    return tool.empty() ? Obstacle{} : obstacleOfTool(tool);
}

std::string Runner::inserted(const Check& check, const std::string& word) const {
    return replaced(replaced(word, "{kit}", textOf(folders_.programs)), "{tool}",
                    programOnPath(check.tool));
}

Variables Runner::variablesOf(const Check& check) const {
    Variables variables;
    for (const std::string& word : check.variables) {
        const std::size_t sign = word.find('=');
        variables.emplace_back(word.substr(0, sign), inserted(check, word.substr(sign + 1)));
    }
    return variables;
}

std::vector<std::string> Runner::commandOf(const Check& check) const {
    std::vector<std::string> command;
    for (const std::string& word : check.command) {
        command.push_back(inserted(check, word));
    }
    std::string& program = command.front();
    program = isOfKit(program) ? textOf((folders_.programs / pathOf(program)).make_preferred())
                               : programOnPath(program);
    return command;
}

// Without tests, only the status of the program counts.
void Runner::judge(Record& record) const {
    const std::filesystem::path log = folders_.results / pathOf(record.raw);
    if (!isTestProgram(record.check)) {
        record.outcome = record.reason.empty() ? Outcome::Passed : Outcome::Failed;
        if (!record.reason.empty()) record.reason += "\n" + readEnd(log, kShownBytes);
        return;
    }
    record.output = readTestOutput(readEnd(log, kKeptBytes));
    const Outcome outcome = outcomeOf(record.output.tests);
    record.outcome = record.reason.empty() ? outcome : Outcome::Failed;
    if (record.output.tests.empty())
        record.reason += (record.reason.empty() ? "" : ": ") + std::string("no test ran");
}

Record Runner::run(const Check& check) const {
    Record record;
    record.check = check;
    const Obstacle obstacle = obstacleFor(check);
    record.outcome = obstacle.outcome;
    record.reason = obstacle.reason;
    if (obstacle.outcome != Outcome::Passed) return record;
    record.raw = "raw/" + check.id + ".txt";
    const ScopedVariables variables(variablesOf(check));
    const ProcessRun run = runProcess(commandOf(check), folders_.work,
                                      folders_.results / pathOf(record.raw), check.limit);
    record.error = run.error != 0 ? run.error : run.status;
    record.milliseconds = run.milliseconds;
    record.reason = faultOf(run, check.limit);
    judge(record);
    return record;
}
