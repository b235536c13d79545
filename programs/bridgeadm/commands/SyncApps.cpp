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
            return "an app is no object";
        case AppcFlaw::NotDefined:
            return "an app has no " + key;
        case AppcFlaw::InvalidType:
            return "the " + key + " of an app is no " + flaw.expected;
        case AppcFlaw::None:
            break;
    }
    return {};
}

// Number of apps in a list that can take the cache's place; nothing after an error. The library
// would say why in its log only, and drop the apps in memory.
std::optional<std::size_t> checkedCount(Session& session, const std::string& file,
                                        const std::string& list) {
    QJsonArray array;
    if (!appcParseSyncList(list, array)) {
        session.fail(ExitCode::BadValue, file + " is no JSON object with an array \"apps\"");
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
    parser.add("FILE", arguments->file, "JSON: an object with an array \"apps\"").required();
    parser.onRun([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandSyncApps;
const Command commandSyncApps{
    "", "sync-apps", "Replaces the app cache of an instance by a list of apps",
    "An app of the list is an object with the texts \"package\", \"activity\", \"appLabel\" and\n"
    "\"versionName\" and the number \"versionCode\". Apps that are not in the list leave the\n"
    "cache; icons stay as they are.\n"
    "Example: bridgeadm sync-apps Nougat64 apps.json",
    declare};
