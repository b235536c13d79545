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

std::string exitCodeHelp(const std::vector<ExitCode>& codes) {
    std::string text = "Exit codes:\n";
    for (const ExitCode code : codes) {
        const std::string number = std::to_string(static_cast<int>(code));
        text += std::string(4 - number.size(), ' ') + number + "  " + exitCodeMeaning(code) + "\n";
    }
    return text;
}

void addGroup(OptionParser options, const Command& group) {
    options.addCommand(group.name, group.summary, group.details, group.section).requireCommand();
}

void addCommand(OptionParser options, const Program& program, Session& session,
                const Command& command) {
    OptionParser outer = *command.group == '\0' ? options : options.command(command.group).value();
    OptionParser parser =
        outer.addCommand(command.name, command.summary, command.details, command.section);
    command.declare(parser, session);
    if (program.declareCommonOptions != nullptr) program.declareCommonOptions(parser, session);
}

void declareCommands(OptionParser options, const Program& program, Session& session) {
    for (const std::string section : program.sections) {
        for (const Command* command : allCommands()) {
            if (command->section == section && command->declare == nullptr) {
                addGroup(options, *command);
            }
        }
        for (const Command* command : allCommands()) {
            if (command->section == section && command->declare != nullptr) {
                addCommand(options, program, session, *command);
            }
        }
    }
}

void declareProgram(ProgramParser& parser, const Program& program, Session& session) {
    OptionParser options = parser.options();
    parser.addVersion(program.version);
    program.declareOptions(options, session);
    parser.setDetails(exitCodeHelp(program.exitCodes));
    options.requireCommand();
    declareCommands(options, program, session);
}

std::string hintOf(const Program& program, const ParseEnd& end) {
    for (const auto& [command, hint] : program.elsewhere) {
        if (end.unknownCommand == command) return hint;
    }
    return end.hint.empty() ? "see " + end.command + " --help" : end.hint;
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

// Whether an error in the command line is printed as JSON. The parser may fail before it sees the
// option.
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
