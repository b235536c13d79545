// bridgectl version
#include <bridge/bridge.h>

#include "LibraryVersion.h"
#include "Session.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"

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
const Command commandVersion{"Diagnosis",
                             "",
                             "version",
                             "Print the versions of the program and the library",
                             "Example: bridgectl version --json",
                             declare};
