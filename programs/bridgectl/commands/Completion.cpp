// bridgectl completion bash|powershell
#include <memory>
#include <string>

#include "Session.h"
#include "shared/Command.h"
#include "shared/CompletionScript.h"
#include "shared/OptionParser.h"

namespace {

void run(Session& session, const OptionParser& program, const std::string& shell) {
    const CommandNode tree = program.tree();
    const std::string script = shell == "bash" ? bashCompletion(tree) : powershellCompletion(tree);
    if (session.json) {
        session.printJson(JsonObject{{"shell", shell}, {"script", script}});
    } else {
        session.print(script);
    }
}

void declare(OptionParser& parser, Session& session) {
    const auto shell = std::make_shared<std::string>();
    parser.add("SHELL", *shell, "The shell").required().oneOf({"bash", "powershell"});
    parser.onRun([&session, program = parser.parent(), shell] { run(session, program, *shell); });
}

}  // namespace

extern const Command commandCompletion;
const Command commandCompletion{"", "completion",
                                "Prints a script that makes a shell complete the commands",
                                "Example: bridgectl completion powershell >> $PROFILE\n"
                                "For bash: source <(bridgectl completion bash)",
                                declare};
