#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

#include "Console.h"

namespace {

std::string exitCodeHelp() {
    std::string text = "Exit codes:\n";
#define BRIDGECTL_LINE(name, number, meaning) text += "  " #number "  " meaning "\n";
    BRIDGECTL_EXIT_CODES(BRIDGECTL_LINE)
#undef BRIDGECTL_LINE
    return text;
}

// Parsers of the groups that commands name, made as they come.
class Groups {
 public:
    explicit Groups(CLI::App& app) : app_(app) {}

    CLI::App& of(const Command& command) {
        const std::string name = command.group;
        if (name.empty()) return app_;
        CLI::App*& group = groups_[name];
        if (group == nullptr) group = add(name);
        return *group;
    }

 private:
    CLI::App* add(const std::string& name) {
        return app_.add_subcommand(name, "Commands on the configuration")->require_subcommand(1);
    }

    CLI::App& app_;
    std::map<std::string, CLI::App*> groups_;
};

void declareProgramOptions(CLI::App& app, const Program& program, Session& session) {
    program.declareOptions(app, session);
    app.allow_windows_style_options(false);  // texts may begin with "/"
    app.set_version_flag("--version", std::string(programName) + " " + program.version);
    app.footer(exitCodeHelp());
    app.require_subcommand(1);
}

int endOf(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help and --version arrive here
        const bool isVersion = error.get_name() == "CallForVersion";
        printOut(isVersion ? app.version() + "\n" : app.help());
        return static_cast<int>(ExitCode::Success);
    }
    printError(error.what());
    printError(std::string("see ") + programName + " --help");
    return static_cast<int>(ExitCode::Usage);
}

int parseAndRun(const Program& program, Session& session, const ProgramRun& run) {
    CLI::App app(program.description, programName);
    declareProgramOptions(app, program, session);
    Groups groups(app);
    for (const Command* command : allCommands()) {
        CLI::App* parser = groups.of(*command).add_subcommand(command->name, command->summary);
        parser->footer(command->details);
        command->declare(*parser, session);
    }
    std::vector<std::string> arguments = commandLineArguments();
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
    try {
        app.parse(arguments);
    } catch (const CLI::ParseError& error) {
        return endOf(app, error);
    }
    return static_cast<int>(run.exitCode);
}

}  // namespace

int runCommandLine(const Program& program, Session& session, const ProgramRun& run) noexcept {
    keepStandardHandles();
    try {
        return parseAndRun(program, session, run);
    } catch (const std::exception& error) {
        printError(error.what());
        return static_cast<int>(ExitCode::Library);
    }
}
