// bridgectl apps INSTANCE
#include <bridge/bridge.h>

#include <memory>
#include <string>

#include "LibraryText.h"
#include "ListingRows.h"
#include "Session.h"
#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/OptionParser.h"
#include "shared/Table.h"

namespace {

void run(Session& session, const std::string& instance) {
    if (!session.start()) return;
    if (!session.requireInstance(instance)) return;
    const LibraryText text(session.timed("bridgeGetInstalledApps", [&instance] {
        return bridgeGetInstalledApps(instance.c_str());
    }));
    if (text == nullptr) {
        session.fail(ExitCode::Library, "the library returned no listing; see the log");
        return;
    }
    session.print(session.json ? text.get() : formatTable(appRows(text.get()), outputStyle()));
}

void declare(OptionParser& parser, Session& session) {
    const auto instance = std::make_shared<std::string>();
    parser.add("INSTANCE", *instance, "Instance name").required();
    parser.onRun([&session, instance] { run(session, *instance); });
}

}  // namespace

extern const Command commandApps;
const Command commandApps{
    "Instances and apps",
    "",
    "apps",
    "List the apps of an instance",
    "Example: bridgectl apps Nougat64\n"
    "Example: bridgectl apps Nougat64 --json\n"
    "The list comes from the app cache, so the player need not run. The column ICON tells\n"
    "whether the icon file exists. The JSON is the output of the library.",
    declare};
