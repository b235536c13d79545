// bridgectl apps INSTANCE [--json]
#include <bridge/bridge.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "Console.h"
#include "LibraryText.h"
#include "Session.h"
#include "Table.h"
#include "xpl/Xfile.h"

namespace {

struct Arguments {
    std::string instance;
    bool json = false;
};

const char* iconMark(const std::string& path) {
    return xfileExists(path) == XERR_SUCCESS ? "yes" : "no";
}

std::string versionText(const nlohmann::json& object) {
    const std::string name = object["versionName"];
    return (name.empty() ? "" : name + " ") + "(" + object["versionCode"].dump() + ")";
}

void printTable(const char* text) {
    std::vector<TableRow> rows{{"NAME", "PACKAGE", "ACTIVITY", "VERSION", "ICON"}};
    for (const nlohmann::json& object : nlohmann::json::parse(text)) {
        rows.push_back({object["appLabel"], object["package"], object["activity"],
                        versionText(object), iconMark(object["iconFilePath"])});
    }
    printOut(formatTable(rows));
}

void run(Session& session, const Arguments& arguments) {
    if (!session.start()) return;
    // Without the configuration file no instance is known, and the library is asked for any.
    if (!session.noConf && session.configuration().instances().count(arguments.instance) == 0) {
        session.failInstance(arguments.instance);
        return;
    }
    const LibraryText text(bridgeGetInstalledApps(arguments.instance.c_str()));
    if (text == nullptr) {
        session.fail(ExitCode::Library, "no listing; see the log");
        return;
    }
    if (arguments.json) {
        printOut(text.get());
    } else {
        printTable(text.get());
    }
}

void declare(CLI::App& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add_option("INSTANCE", arguments->instance, "Instance name")->required();
    parser.add_flag("--json", arguments->json, "The library's JSON as it is");
    parser.callback([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandApps;
const Command commandApps{
    "", "apps", "Lists the apps of an instance",
    "Example: bridgectl apps Nougat64\n"
    "The list is the app cache's; the player need not run. ICON tells whether "
    "the icon file exists.",
    declare};
