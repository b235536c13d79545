// bridgectl instances [--json]
#include <bridge/bridge.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "Console.h"
#include "LibraryText.h"
#include "Session.h"
#include "Table.h"
#include "conf/ConfKey.h"
#include "utl/UtlImages.h"

namespace {

void printTable(const char* text) {
    std::vector<TableRow> rows{{"INSTANCE", "NAME", "IMAGE", "CPU", "RAM", "GRAPHICS", "PROFILE"}};
    for (const nlohmann::json& object : nlohmann::json::parse(text)) {
        rows.push_back({object["instance"], object["displayName"], object["imageName"],
                        object["cpu"].dump(), object["ram"].dump(),
                        object["graphicsEngine"].get<std::string>() + "/" +
                            object["graphicsRenderer"].get<std::string>(),
                        object["deviceProfile"]});
    }
    printOut(formatTable(rows));
}

// The library's listing ends the process when it meets an instance of an unknown image, or one
// whose numbers cannot be read.
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

void run(Session& session, bool json) {
    if (!session.start() || !canAllBeListed(session)) return;
    const LibraryText text(bridgeConfGetInstances());
    if (text == nullptr) {
        session.fail(ExitCode::Library, "no listing; see the log");
        return;
    }
    if (json) {
        printOut(text.get());
    } else {
        printTable(text.get());
    }
}

void declare(CLI::App& parser, Session& session) {
    const auto json = std::make_shared<bool>(false);
    parser.add_flag("--json", *json, "The library's JSON as it is");
    parser.callback([&session, json] { run(session, *json); });
}

}  // namespace

extern const Command commandInstances;
const Command commandInstances{"", "instances", "Lists the instances",
                               "Example: bridgectl instances --json", declare};
