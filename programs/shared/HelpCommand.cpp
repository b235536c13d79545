#include "shared/HelpCommand.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "shared/CommandTree.h"
#include "shared/Console.h"
#include "shared/Joined.h"
#include "shared/OptionParser.h"
#include "shared/ProgramRun.h"

namespace {

using Names = std::vector<std::string>;

void explain(ProgramRun& run, const OptionParser& program, const Names& names) {
    OptionParser parser = program;
    std::string title = program.name();
    for (const std::string& name : names) {
        const std::optional<OptionParser> command = parser.command(name);
        if (!command) {
            run.fail(ExitCode::Usage, "no such command: " + joined(names, " "));
            return;
        }
        parser = *command;
        title += " " + name;
    }
    if (run.json) {
        run.printJson(commandJson(parser.tree()));
        return;
    }
    run.print(outputStyle().help(parser.help(title)));
}

}  // namespace

void declareHelp(OptionParser& parser, ProgramRun& run) {
    const auto names = std::make_shared<Names>();
    parser.add("COMMAND", *names, "Command to explain; without it, all are listed");
    parser.onRun([&run, program = parser.parent(), names] { explain(run, program, *names); });
}
