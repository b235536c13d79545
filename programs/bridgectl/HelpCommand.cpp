#include "HelpCommand.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "CommandTree.h"
#include "Console.h"

namespace {

using Names = std::vector<std::string>;

// The command of this name below a parser; null when there is none.
const CLI::App* commandOf(const CLI::App& parser, const std::string& name) {
    const auto found = parser.get_subcommands(
        [&name](const CLI::App* command) { return command->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

void explain(ProgramRun& run, const CLI::App& program, const Names& names) {
    const CLI::App* parser = &program;
    std::string title = program.get_name();
    for (const std::string& name : names) {
        parser = commandOf(*parser, name);
        if (parser == nullptr) {
            run.fail(ExitCode::Usage, "no such command: " + CLI::detail::join(names, " "));
            return;
        }
        title += " " + name;
    }
    if (run.json) {
        run.printJson(commandJson(commandTree(*parser)));
        return;
    }
    // Not the parser's own help(), which would explain the command that runs: this one.
    run.print(outputStyle().help(
        parser->get_formatter()->make_help(parser, title, CLI::AppFormatMode::Normal)));
}

}  // namespace

void declareHelp(CLI::App& parser, ProgramRun& run) {
    const auto names = std::make_shared<Names>();
    parser.add_option("COMMAND", *names, "Command to explain; without it, all are listed");
    parser.callback([&run, &parser, names] { explain(run, *parser.get_parent(), *names); });
}
