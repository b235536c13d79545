// bridgectl conf list [--global] [--instance NAME]
#include <memory>
#include <string>
#include <vector>

#include "Configuration.h"
#include "KeyValue.h"
#include "conf/ConfKey.h"
#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/JsonValue.h"
#include "shared/OptionParser.h"
#include "shared/Table.h"

namespace {

struct Arguments {
    bool globalOnly = false;
    std::string instance;
    bool isForOne = false;
};

bool isWanted(const Arguments& arguments, const KeyInfo& info) {
    const ConfKey key = confSplitKey(info.key);
    if (arguments.globalOnly) return key.scope == ConfScope::Global;
    return !arguments.isForOne ||
           (key.scope == ConfScope::Instance && key.instance == arguments.instance);
}

JsonValue jsonOf(Session& session, const std::vector<KeyInfo>& keys) {
    JsonArray array;
    for (const KeyInfo& info : keys) array.push_back(keyJson(session, info));
    return array;
}

std::string tableOf(Session& session, const std::vector<KeyInfo>& keys) {
    std::vector<TableRow> rows{{"KEY", "TYPE", "VALUE"}};
    for (const KeyInfo& info : keys) {
        rows.push_back({info.key, typeName(info.type), shownValue(session, info)});
    }
    return formatTable(rows, outputStyle());
}

void run(Session& session, const Arguments& arguments) {
    if (!session.start()) return;
    const Configuration& configuration = session.configuration();
    if (arguments.isForOne && configuration.instances().count(arguments.instance) == 0) {
        session.failInstance(arguments.instance);
        return;
    }
    std::vector<KeyInfo> keys;
    for (const KeyInfo& info : configuration.list()) {
        if (isWanted(arguments, info)) keys.push_back(info);
    }
    session.json ? session.printJson(jsonOf(session, keys)) : session.print(tableOf(session, keys));
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    Option global = parser.addFlag("--global", arguments->globalOnly, "Global keys only");
    Option instance = parser.add("--instance", arguments->instance, "Keys of this instance only")
                          .taking("NAME")
                          .notEmpty()
                          .excludes(global);
    parser.onRun([&session, arguments, instance] {
        arguments->isForOne = instance.isGiven();
        run(session, *arguments);
    });
}

}  // namespace

extern const Command commandConfList;
const Command commandConfList{"Configuration",
                              "conf",
                              "list",
                              "List all keys with type and value",
                              "Example: bridgectl conf list\n"
                              "Example: bridgectl conf list --instance Nougat64",
                              declare};
