#include "shared/CommandLine.h"

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/ExitCode.h"
#include "shared/JsonValue.h"
#include "shared/OptionParser.h"
#include "shared/ProgramRun.h"

namespace {

std::string exitCodeHelp() {
    std::string text = "Exit codes:\n";
#define PROGRAM_LINE(name, number, meaning) text += "  " #number "  " meaning "\n";
    PROGRAM_EXIT_CODES(PROGRAM_LINE)
#undef PROGRAM_LINE
    return text;
}

void declareGroups(OptionParser options) {
    for (const Command* group : allCommands()) {
        if (group->declare != nullptr) continue;
        options.addCommand(group->name, group->summary, group->details).requireCommand();
    }
}

OptionParser parserFor(OptionParser options, const Command& command) {
    OptionParser outer = *command.group == '\0' ? options : options.command(command.group).value();
    return outer.addCommand(command.name, command.summary, command.details);
}

void declareCommands(OptionParser options, const Program& program, Session& session) {
    declareGroups(options);
    for (const Command* command : allCommands()) {
        if (command->declare == nullptr) continue;
        OptionParser parser = parserFor(options, *command);
        command->declare(parser, session);
        if (program.declareCommonOptions != nullptr) program.declareCommonOptions(parser, session);
    }
}

void declareProgram(ProgramParser& parser, const Program& program, Session& session) {
    OptionParser options = parser.options();
    program.declareOptions(options, session);
    parser.addVersion(program.version);
    parser.setDetails(exitCodeHelp());
    options.requireCommand();
    declareCommands(options, program, session);
}

std::string hintOf(const Program& program, const ParseEnd& end) {
    for (const auto& [command, hint] : program.elsewhere) {
        if (end.unknownCommand == command) return hint;
    }
    return end.hint.empty() ? std::string("see ") + programName + " --help" : end.hint;
}

void endWith(ProgramRun& run, const Program& program, const ParseEnd& end) {
    switch (end.kind) {
        case ParseEnd::Understood:
            return;
        case ParseEnd::Help:
            run.json ? run.printJson(JsonObject{{"help", end.text}})
                     : run.print(outputStyle().help(end.text));
            return;
        case ParseEnd::Version:
            run.json ? run.printJson(JsonObject{{"version", end.text}})
                     : run.print(end.text + "\n");
            return;
        case ParseEnd::Error:
            run.fail(ExitCode::Usage, end.text, hintOf(program, end));
    }
}

// Whether even the error of a command line that is not understood is to be JSON.
bool asksForJson(const std::vector<std::string>& arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

int parseAndRun(const Program& program, Session& session, ProgramRun& run) {
    ProgramParser parser(programName, program.description);
    declareProgram(parser, program, session);
    const std::vector<std::string> arguments = commandLineArguments();
    run.json = asksForJson(arguments);
    endWith(run, program, parser.parse(arguments));
    return static_cast<int>(run.exitCode);
}

}  // namespace

int runCommandLine(const Program& program, Session& session, ProgramRun& run) noexcept {
    keepStandardHandles();
    takeStandardOutput();
    try {
        return parseAndRun(program, session, run);
    } catch (const std::exception& error) {
        run.fail(ExitCode::Library, error.what());
        return static_cast<int>(run.exitCode);
    }
}
