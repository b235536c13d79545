// bridgectl version
#include <bridge/bridge.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "LibraryVersion.h"
#include "Session.h"

namespace {

void run(Session& session) {
    if (session.json) {
        session.printJson({{"bridgectl", BRIDGE_VERSION_TEXT}, {"library", libraryVersion()}});
    } else {
        session.print(programVersions() + "\n");
    }
}

void declare(CLI::App& parser, Session& session) {
    parser.callback([&session] { run(session); });
}

}  // namespace

extern const Command commandVersion;
const Command commandVersion{"", "version", "Prints the versions of the program and of the library",
                             "Example: bridgectl version --json", declare};
