// bridgectl completion bash|powershell
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "CompletionScript.h"
#include "Session.h"

namespace {

void run(Session& session, const CLI::App& program, const std::string& shell) {
    const CommandNode tree = commandTree(program);
    const std::string script = shell == "bash" ? bashCompletion(tree) : powershellCompletion(tree);
    if (session.json) {
        session.printJson({{"shell", shell}, {"script", script}});
    } else {
        session.print(script);
    }
}

void declare(CLI::App& parser, Session& session) {
    const auto shell = std::make_shared<std::string>();
    parser.add_option("SHELL", *shell, "The shell")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>{"bash", "powershell"}));
    parser.callback([&session, &parser, shell] { run(session, *parser.get_parent(), *shell); });
}

}  // namespace

extern const Command commandCompletion;
const Command commandCompletion{"", "completion",
                                "Prints a script that makes a shell complete the commands",
                                "Example: bridgectl completion powershell >> $PROFILE\n"
                                "For bash: source <(bridgectl completion bash)",
                                declare};
