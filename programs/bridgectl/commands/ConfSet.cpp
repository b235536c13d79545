// bridgectl conf set KEY VALUE [--to FILE]
#include <bridge/bridge.h>

#include <CLI/CLI.hpp>

#include "Command.h"
#include "Console.h"
#include "Session.h"

namespace {

struct Arguments {
    std::string key;
    std::string value;
    std::string file;  // empty: the product's configuration
};

int stage(const std::string& key, ConfType type, const std::string& stored) {
    switch (type) {
        case ConfType::Bool:
            return bridgeConfSetBool(key.c_str(), stored == "1" ? 1 : 0);
        case ConfType::I32:
            return bridgeConfSetI32(key.c_str(), std::stoi(stored));
        case ConfType::I64:
            return bridgeConfSetI64(key.c_str(), std::stoll(stored));
        case ConfType::MultiString:
            return bridgeConfSetMultiString(key.c_str(), stored.c_str());
        case ConfType::String:
            return bridgeConfSetString(key.c_str(), stored.c_str());
        case ConfType::None:
            break;
    }
    return BRIDGE_INVALID_ARGUMENT;
}

std::string shown(const std::optional<KeyInfo>& info) {
    if (!info || info->state == KeyState::Unset) return "unset";
    return info->state == KeyState::Value ? readValue(*info) : "invalid: \"" + info->text + "\"";
}

void run(Session& session, const Arguments& arguments) {
    if (!session.start()) return;
    const std::string& key = arguments.key;
    const std::optional<ConfType> type = session.configuration().typeOf(key);
    if (!type) {
        session.fail(ExitCode::UnknownName, "no such key: " + key);
        return;
    }
    const std::optional<std::string> stored = storedForm(key, *type, arguments.value);
    if (!stored) {
        session.fail(ExitCode::BadValue, key + " cannot be \"" + arguments.value +
                                             "\": its type is " + typeName(*type));
        return;
    }
    const std::string before = shown(session.configuration().find(key));
    int status = stage(key, *type, *stored);
    if (status == BRIDGE_SUCCESS) {
        status = arguments.file.empty() ? bridgeConfCommit()
                                        : bridgeConfCommitToFile(arguments.file.c_str());
    }
    if (status != BRIDGE_SUCCESS) {
        session.failStatus(ExitCode::Commit, "not committed", status);
        return;
    }
    const KeyInfo after{key, *type, KeyState::Value, *stored};
    printOut(key + ": " + before + " -> " + readValue(after) + "\n");
}

void declare(CLI::App& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add_option("KEY", arguments->key, "Full key")->required();
    parser.add_option("VALUE", arguments->value, "New value; true or false for a bool")->required();
    parser.add_option("--to", arguments->file, "Write the configuration into this file instead");
    parser.callback([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandConfSet;
const Command commandConfSet{"conf", "set", "Sets a key and commits the change",
                             "Example: bridgectl conf set vtr.enable_adb_access true\n"
                             "A value that begins with \"-\" comes behind \"--\".",
                             declare};
