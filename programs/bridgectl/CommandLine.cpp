#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "Console.h"

namespace {

std::string exitCodeHelp() {
    std::string text = "Exit codes:\n";
#define BRIDGECTL_LINE(name, number, meaning) text += "  " #number "  " meaning "\n";
    BRIDGECTL_EXIT_CODES(BRIDGECTL_LINE)
#undef BRIDGECTL_LINE
    return text;
}

CLI::App& parserOf(CLI::App& app, const Command& command) {
    return *command.group == '\0' ? app : *app.get_subcommand(command.group);
}

void declareCommands(CLI::App& app, const Program& program, Session& session) {
    for (const Command* command : allCommands()) {
        if (command->declare != nullptr) continue;
        app.add_subcommand(command->name, command->summary)
            ->require_subcommand(1)
            ->footer(command->details);
    }
    for (const Command* command : allCommands()) {
        if (command->declare == nullptr) continue;
        CLI::App* parser = parserOf(app, *command).add_subcommand(command->name, command->summary);
        parser->footer(command->details);
        command->declare(*parser, session);
        if (program.declareCommonOptions != nullptr) program.declareCommonOptions(*parser, session);
    }
}

void declareProgramOptions(CLI::App& app, const Program& program, Session& session) {
    program.declareOptions(app, session);
    app.allow_windows_style_options(false);  // texts may begin with "/"
    app.set_version_flag("--version", program.version);
    app.footer(exitCodeHelp());
    app.require_subcommand(1);
}

void endWith(ProgramRun& run, const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help and --version arrive here
        const bool isVersion = error.get_name() == "CallForVersion";
        run.print(isVersion ? app.version() + "\n" : outputStyle().help(app.help()));
        return;
    }
    run.fail(ExitCode::Usage, error.what());
    run.fail(ExitCode::Usage, std::string("see ") + programName + " --help");
}

int parseAndRun(const Program& program, Session& session, ProgramRun& run) {
    CLI::App app(program.description, programName);
    declareProgramOptions(app, program, session);
    declareCommands(app, program, session);
    std::vector<std::string> arguments = commandLineArguments();
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
    try {
        app.parse(arguments);
    } catch (const CLI::ParseError& error) {
        endWith(run, app, error);
    }
    return static_cast<int>(run.exitCode);
}

}  // namespace

int runCommandLine(const Program& program, Session& session, ProgramRun& run) noexcept {
    keepStandardHandles();
    try {
        return parseAndRun(program, session, run);
    } catch (const std::exception& error) {
        printError(error.what());
        return static_cast<int>(ExitCode::Library);
    }
}
