#include "shared/HelpCommand.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "shared/CommandTree.h"
#include "shared/Console.h"
#include "shared/ExitCode.h"
#include "shared/HelpText.h"
#include "shared/Joined.h"
#include "shared/Nearest.h"
#include "shared/OptionParser.h"
#include "shared/ProgramRun.h"

namespace {

using Names = std::vector<std::string>;

bool failUnknown(ProgramRun& run, const OptionParser& outer, const Names& names,
                 const std::string& wrong) {
    Names possible;
    for (const CommandNode& command : outer.tree().commands) possible.push_back(command.name);
    const std::string hint = nearestHint(wrong, possible);
    return run.fail(ExitCode::Usage, "no such command: " + joined(names, " "),
                    hint.empty() ? std::string("see ") + programName + " --help" : hint);
}

void explain(ProgramRun& run, const OptionParser& program, const Names& names) {
    OptionParser parser = program;
    std::string title = program.name();
    for (const std::string& name : names) {
        const std::optional<OptionParser> command = parser.command(name);
        if (!command) {
            failUnknown(run, parser, names, name);
            return;
        }
        parser = *command;
        title += " " + name;
    }
    if (run.json) {
        run.printJson(commandJson(parser.tree()));
    } else {
        run.print(outputStyle().help(helpText(parser.tree(), title)));
    }
}

}  // namespace

void declareHelp(OptionParser& parser, ProgramRun& run) {
    const auto names = std::make_shared<Names>();
    const auto markdown = std::make_shared<bool>(false);
    Option command = parser.add("COMMAND", *names, "Command to explain (default: the program)");
    parser.addFlag("--markdown", *markdown, "Print the reference page of all commands")
        .excludes(command);
    parser.onRun([&run, program = parser.parent(), names, markdown] {
        if (*markdown && !run.json) {
            run.print(helpMarkdown(program.tree()));
        } else {
            explain(run, program, *names);
        }
    });
}
