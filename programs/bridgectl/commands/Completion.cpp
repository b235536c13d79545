// bridgectl completion bash|powershell
#include <memory>
#include <string>

#include "Session.h"
#include "shared/Command.h"
#include "shared/CompletionScript.h"
#include "shared/OptionParser.h"

namespace {

void run(Session& session, const std::string& program, const std::string& shell) {
    const std::string script =
        shell == "bash" ? bashCompletion(program) : powershellCompletion(program);
    if (session.json) {
        session.printJson(JsonObject{{"shell", shell}, {"script", script}});
    } else {
        session.print(script);
    }
}

void declare(OptionParser& parser, Session& session) {
    const auto shell = std::make_shared<std::string>();
    parser.add("SHELL", *shell, "Shell").required().oneOf({"bash", "powershell"});
    parser.onRun([&session, name = parser.parent().name(), shell] { run(session, name, *shell); });
}

}  // namespace

extern const Command commandCompletion;
const Command commandCompletion{
    "Help",
    "",
    "completion",
    "Print a completion script for a shell",
    "Example: source <(bridgectl completion bash)\n"
    "Example: bridgectl completion powershell >> $PROFILE\n"
    "The script completes commands, options, keys, instances, packages and client ids.",
    declare};
