// bridgeadm sync-apps INSTANCE FILE
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Session.h"
#include "appc/Appc.h"
#include "appc/AppcApp.h"
#include "appc/AppcFiles.h"
#include "appc/AppcJson.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"
#include "xpl/Xerr.h"

namespace {

struct Arguments {
    std::string instance;
    std::string file;
};

std::string explained(const AppcFlaw& flaw) {
    const std::string key = std::string("\"") + flaw.key + "\"";
    switch (flaw.kind) {
        case AppcFlaw::NotAnObject:
            return "an app is not an object";
        case AppcFlaw::NotDefined:
            return "an app has no " + key;
        case AppcFlaw::InvalidType:
            return "the " + key + " of an app is not a " + flaw.expected;
        case AppcFlaw::None:
            break;
    }
    return {};
}

// The number of apps in a valid list. Empty after an error. The library would report the error only
// in its log and drop the apps in memory.
std::optional<std::size_t> checkedCount(Session& session, const std::string& file,
                                        const std::string& list) {
    QJsonArray array;
    if (!appcParseSyncList(list, array)) {
        session.fail(ExitCode::BadValue, file + " is not a JSON object with an array \"apps\"");
        return std::nullopt;
    }
    AppcApps apps;
    if (const AppcFlaw flaw = appcReadApps(array, apps); flaw.kind != AppcFlaw::None) {
        session.fail(ExitCode::BadValue, file + ": " + explained(flaw));
        return std::nullopt;
    }
    return apps.size();
}

void run(Session& session, const Arguments& arguments) {
    std::string list;
    if (const std::int32_t error = appcDiskFiles().read(arguments.file, list); error != 0) {
        session.failStatus(ExitCode::BadValue, "cannot read " + arguments.file,
                           xerrFromWindows(error));
        return;
    }
    const std::optional<std::size_t> count = checkedCount(session, arguments.file, list);
    if (!count || !session.openCache(arguments.instance)) return;
    const XErr err = appcSyncInstalledApps(appcStore(), list.c_str());
    if (!session.saved(err)) return;
    session.print("apps of " + arguments.instance + ": " + std::to_string(*count) + "\n");
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add("INSTANCE", arguments->instance, "Instance name").required();
    parser.add("FILE", arguments->file, "JSON file: an object with an array \"apps\"").required();
    parser.onRun([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandSyncApps;
const Command commandSyncApps{
    "App caches",
    "",
    "sync-apps",
    "Replace the app cache of an instance with a list of apps",
    "Example: bridgeadm sync-apps Nougat64 apps.json\n"
    "Each app in the list is an object with the texts \"package\", \"activity\", \"appLabel\" and\n"
    "\"versionName\" and the number \"versionCode\". Apps that are not in the list are removed\n"
    "from the cache. Icons do not change.",
    declare};
