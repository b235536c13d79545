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
    parser.add("WORD", *words, "Words of the command line before the one to complete");
    parser.onRun([&session, program = parser.parent(), words] { run(session, program, *words); });
}

}  // namespace

extern const Command commandComplete;
const Command commandComplete{
    "", "complete", "Lists what can come next on a command line, for the completion of a shell",
    "Example: bridgectl complete --json -- conf get\n"
    "The names of keys, instances and apps are those of the product's files; the library is not\n"
    "started.",
    declare};
