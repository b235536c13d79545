// bridgectl catalogue [--markdown]
#include <memory>

#include "CatalogueRows.h"
#include "Session.h"
#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/OptionParser.h"
#include "shared/Table.h"

namespace {

void run(Session& session, bool markdown) {
    if (markdown && !session.json) {
        session.print(catalogueMarkdown());
    } else if (session.json) {
        session.printJson(catalogueJson());
    } else {
        session.print(formatTable(catalogueRows(), outputStyle()));
    }
}

void declare(OptionParser& parser, Session& session) {
    const auto markdown = std::make_shared<bool>(false);
    parser.addFlag("--markdown", *markdown, "Print the table of the reference page");
    parser.onRun([&session, markdown] { run(session, *markdown); });
}

}  // namespace

extern const Command commandCatalogue;
const Command commandCatalogue{
    "Configuration",
    "",
    "catalogue",
    "List all possible keys with scope, type and default",
    "Example: bridgectl catalogue\n"
    "Example: bridgectl catalogue --json\n"
    "The command does not start the library. A bool without a default cannot be read until it\n"
    "is set.",
    declare};
