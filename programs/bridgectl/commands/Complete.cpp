// bridgectl complete -- [WORD...]
#include <memory>
#include <string>
#include <vector>

#include "CompletionNames.h"
#include "Session.h"
#include "shared/Command.h"
#include "shared/Completion.h"
#include "shared/OptionParser.h"

namespace {

using Words = std::vector<std::string>;

void run(Session& session, const OptionParser& program, const Words& words) {
    const Words names = completionsAfter(program.tree(), words, completionNames);
    if (session.json) {
        session.printJson(JsonArray(names.begin(), names.end()));
        return;
    }
    std::string text;
    for (const std::string& name : names) text += name + "\n";
    session.print(text);
}

void declare(OptionParser& parser, Session& session) {
    const auto words = std::make_shared<Words>();
    parser.add("WORD", *words, "Words before the one to complete");
    parser.onRun([&session, program = parser.parent(), words] { run(session, program, *words); });
}

}  // namespace

extern const Command commandComplete;
const Command commandComplete{
    "Help",
    "",
    "complete",
    "List the possible next words of a command line",
    "Example: bridgectl complete --json -- conf get\n"
    "The shell scripts of `completion` call this command. It reads keys, instances and apps\n"
    "from the product's files and does not start the library.",
    declare};
