// bridgectl version
#include <bridge/bridge.h>

#include "Command.h"
#include "LibraryVersion.h"
#include "OptionParser.h"
#include "Session.h"

namespace {

void run(Session& session) {
    if (session.json) {
        session.printJson(
            JsonObject{{"bridgectl", BRIDGE_VERSION_TEXT}, {"library", libraryVersion()}});
    } else {
        session.print(programVersions() + "\n");
    }
}

void declare(OptionParser& parser, Session& session) {
    parser.onRun([&session] { run(session); });
}

}  // namespace

extern const Command commandVersion;
const Command commandVersion{"", "version", "Prints the versions of the program and of the library",
                             "Example: bridgectl version --json", declare};
