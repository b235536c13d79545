// bridgectl apps INSTANCE
#include <bridge/bridge.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "Console.h"
#include "LibraryText.h"
#include "OptionParser.h"
#include "Session.h"
#include "Table.h"
#include "xpl/Xfile.h"

namespace {

const char* iconMark(const std::string& path) {
    return xfileExists(path) == XERR_SUCCESS ? "yes" : "no";
}

std::string versionText(const nlohmann::json& object) {
    const std::string name = object["versionName"];
    return (name.empty() ? "" : name + " ") + "(" + object["versionCode"].dump() + ")";
}

std::string tableOf(const char* text) {
    std::vector<TableRow> rows{{"NAME", "PACKAGE", "ACTIVITY", "VERSION", "ICON"}};
    for (const nlohmann::json& object : nlohmann::json::parse(text)) {
        rows.push_back({object["appLabel"], object["package"], object["activity"],
                        versionText(object), iconMark(object["iconFilePath"])});
    }
    return formatTable(rows, outputStyle());
}

void run(Session& session, const std::string& instance) {
    if (!session.start()) return;
    // Without the configuration file no instance is known, and the library is asked for any.
    if (!session.noConf && session.configuration().instances().count(instance) == 0) {
        session.failInstance(instance);
        return;
    }
    const LibraryText text(session.timed("bridgeGetInstalledApps", [&instance] {
        return bridgeGetInstalledApps(instance.c_str());
    }));
    if (text == nullptr) {
        session.fail(ExitCode::Library, "no listing; see the log");
        return;
    }
    session.print(session.json ? text.get() : tableOf(text.get()));
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
