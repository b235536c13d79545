// bridgectl instances
#include <bridge/bridge.h>

#include <algorithm>
#include <set>
#include <string>

#include "Configuration.h"
#include "LibraryText.h"
#include "ListingRows.h"
#include "Session.h"
#include "conf/ConfKey.h"
#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/OptionParser.h"
#include "shared/Table.h"
#include "utl/UtlImages.h"

namespace {

// The library ends the process if it lists an instance with an unknown image or unreadable numbers.
bool canBeListed(Session& session, const std::string& instance) {
    if (utlFindImageTrait(utlImageNameOfInstance(instance)) == nullptr) {
        return session.fail(ExitCode::UnknownName,
                            "instance " + instance + " has an unknown image");
    }
    for (const char* property : {"cpus", "ram"}) {
        const std::string key = confInstancePrefix(instance) + property;
        const KeyInfo number = session.configuration().find(key).value();
        if (number.state == KeyState::Invalid) return session.failInvalid(number);
    }
    return true;
}

bool canAllBeListed(Session& session) {
    const std::set<std::string>& instances = session.configuration().instances();
    return std::all_of(instances.begin(), instances.end(), [&session](const std::string& instance) {
        return canBeListed(session, instance);
    });
}

void run(Session& session) {
    if (!session.start() || !canAllBeListed(session)) return;
    const LibraryText text(session.timed("bridgeConfGetInstances", bridgeConfGetInstances));
    if (text == nullptr) {
        session.fail(ExitCode::Library, "the library returned no listing; see the log");
        return;
    }
    session.print(session.json ? text.get() : formatTable(instanceRows(text.get()), outputStyle()));
}

void declare(OptionParser& parser, Session& session) {
    parser.onRun([&session] { run(session); });
}

}  // namespace

extern const Command commandInstances;
const Command commandInstances{
    "Instances and apps",
    "",
    "instances",
    "List the instances",
    "Example: bridgectl instances\n"
    "Example: bridgectl instances --json\n"
    "The JSON is the output of the library. To copy, remove or dump an instance, use\n"
    "`bridgeadm copy-instance`, `bridgeadm remove-instance` and `bridgeadm dump-instance`.",
    declare};
