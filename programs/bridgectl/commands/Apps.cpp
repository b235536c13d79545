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
        session.fail(ExitCode::Library, "no listing; see the log");
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
    "", "apps", "Lists the apps of an instance",
    "Example: bridgectl apps Nougat64\n"
    "The list is the app cache's; the player need not run. ICON tells whether "
    "the icon file exists. The JSON is the library's own.",
    declare};
