#include "TestOutput.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace {

constexpr std::string_view kBegin = "[ RUN      ] ";
constexpr std::string_view kOk = "[       OK ] ";
constexpr std::string_view kFailed = "[  FAILED  ] ";
constexpr std::string_view kSkipped = "[  SKIPPED ] ";
constexpr std::string_view kFigure = "[figure] ";
constexpr std::size_t kLongestReason = 2000;

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// "Suite.Test (12 ms)", and for a parameter ", where GetParam() = …" before the time.
void readEnd(std::string_view line, TestRun& test) {
    const std::size_t time = line.rfind(" (");
    if (time != std::string_view::npos) {
        test.milliseconds = std::atoi(std::string(line.substr(time + 2)).c_str());
    }
}

bool isOf(std::string_view line, const TestRun& test) {
    if (!startsWith(line, test.name)) return false;
    const std::string_view rest = line.substr(test.name.size());
    return startsWith(rest, " (") || startsWith(rest, ", ");
}

// Reads the line that ends the running test.
bool endsTest(std::string_view line, TestRun& test) {
    constexpr std::pair<std::string_view, Outcome> kEnds[] = {
        {kOk, Outcome::Passed}, {kFailed, Outcome::Failed}, {kSkipped, Outcome::Skipped}};
    for (const auto& [start, outcome] : kEnds) {
        if (!startsWith(line, start) || !isOf(line.substr(start.size()), test)) continue;
        test.outcome = outcome;
        readEnd(line, test);
        if (outcome == Outcome::Passed) test.reason.clear();
        return true;
    }
    return false;
}

void addReason(std::string_view line, TestRun& test) {
    constexpr std::string_view kPlace = ": Skipped";
    const bool isPlace =
        line.size() >= kPlace.size() && line.substr(line.size() - kPlace.size()) == kPlace;
    if (line.empty() || isPlace || test.reason.size() > kLongestReason) return;
    if (!test.reason.empty()) test.reason += '\n';
    test.reason += line;
}

void readFigure(std::string_view line, TestOutput& output) {
    const std::string_view figure = line.substr(kFigure.size());
    const std::size_t blank = figure.find(' ');
    if (blank == std::string_view::npos) return;
    output.figures.emplace_back(figure.substr(0, blank), figure.substr(blank + 1));
}

}  // namespace

TestOutput readTestOutput(std::string_view text) {
    TestOutput output;
    bool isRunning = false;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (startsWith(line, kBegin)) {
            output.tests.emplace_back().name = line.substr(kBegin.size());
            isRunning = true;
        } else if (startsWith(line, kFigure)) {
            readFigure(line, output);
        } else if (isRunning && endsTest(line, output.tests.back())) {
            isRunning = false;
        } else if (isRunning) {
            addReason(line, output.tests.back());
        }
    }
    if (isRunning) output.tests.back().reason.insert(0, "the process ended in this test\n");
    return output;
}

Outcome outcomeOf(const std::vector<TestRun>& tests) {
    const auto any = [&](Outcome outcome) {
        return std::any_of(tests.begin(), tests.end(),
                           [&](const TestRun& test) { return test.outcome == outcome; });
    };
    if (tests.empty() || any(Outcome::Failed)) return Outcome::Failed;
    return any(Outcome::Passed) ? Outcome::Passed : Outcome::Skipped;
}
