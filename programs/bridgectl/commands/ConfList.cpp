// bridgectl conf list [--json] [--global] [--instance NAME]
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "Console.h"
#include "Session.h"
#include "Table.h"
#include "conf/ConfKey.h"

namespace {

struct Arguments {
    bool json = false;
    bool globalOnly = false;
    std::string instance;
};

bool isWanted(const Arguments& arguments, const KeyInfo& info) {
    const ConfKey key = confSplitKey(info.key);
    if (arguments.globalOnly) return key.scope == ConfScope::Global;
    return arguments.instance.empty() ||
           (key.scope == ConfScope::Instance && key.instance == arguments.instance);
}

nlohmann::ordered_json jsonOf(const KeyInfo& info) {
    nlohmann::ordered_json object{{"key", info.key}, {"type", typeName(info.type)}};
    object["value"] = nullptr;
    if (info.state == KeyState::Invalid) object["invalid"] = info.text;
    if (info.state != KeyState::Value) return object;
    const std::string value = readValue(info);
    switch (info.type) {
        case ConfType::Bool:
            object["value"] = value == "true";
            break;
        case ConfType::I32:
        case ConfType::I64:
            object["value"] = std::stoll(value);
            break;
        default:
            object["value"] = value;
            break;
    }
    return object;
}

void printJson(const std::vector<KeyInfo>& keys) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const KeyInfo& info : keys) array.push_back(jsonOf(info));
    // Bytes that are not UTF-8 must not end the listing.
    printOut(array.dump(4, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n");
}

void printTable(const std::vector<KeyInfo>& keys) {
    std::vector<TableRow> rows{{"KEY", "TYPE", "VALUE"}};
    for (const KeyInfo& info : keys)
        rows.push_back({info.key, typeName(info.type), shownValue(info)});
    printOut(formatTable(rows));
}

void run(Session& session, const Arguments& arguments) {
    if (!session.start()) return;
    const Configuration& configuration = session.configuration();
    if (!arguments.instance.empty() && configuration.instances().count(arguments.instance) == 0) {
        session.failInstance(arguments.instance);
        return;
    }
    std::vector<KeyInfo> keys;
    for (const KeyInfo& info : configuration.list()) {
        if (isWanted(arguments, info)) keys.push_back(info);
    }
    arguments.json ? printJson(keys) : printTable(keys);
}

void declare(CLI::App& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add_flag("--json", arguments->json, "As JSON: an array of objects");
    CLI::Option* global = parser.add_flag("--global", arguments->globalOnly, "Global keys only");
    parser.add_option("--instance", arguments->instance, "Keys of this instance only")
        ->excludes(global);
    parser.callback([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandConfList;
const Command commandConfList{"conf", "list", "Lists every key with its type and value",
                              "Example: bridgectl conf list --instance Nougat64", declare};
