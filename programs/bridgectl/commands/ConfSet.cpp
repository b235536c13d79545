// bridgectl conf set KEY VALUE [--to FILE]
#include <bridge/bridge.h>

#include <CLI/CLI.hpp>

#include "Command.h"
#include "Console.h"
#include "Session.h"
#include "conf/ConfKey.h"
#include "conf/ConfText.h"
#include "utl/UtlImages.h"

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

// A key of a new instance makes the instance, and one of an unknown image would end every host that
// lists the instances.
bool instanceIsPossible(Session& session, const std::string& key) {
    const ConfKey parts = confSplitKey(key);
    if (parts.scope != ConfScope::Instance || session.configuration().find(key)) return true;
    if (utlFindImageTrait(utlImageNameOfInstance(parts.instance)) != nullptr) return true;
    return session.fail(ExitCode::UnknownName,
                        "instance " + std::string(parts.instance) + " has an unknown image");
}

// What is to be stored; nothing after an error.
std::optional<KeyInfo> checkedChange(Session& session, const Arguments& arguments) {
    const std::string& key = arguments.key;
    const std::optional<ConfType> type = session.requireType(key);
    if (!type || !instanceIsPossible(session, key)) return std::nullopt;
    const std::optional<std::string> stored = storedForm(*type, arguments.value);
    if (!stored) {
        session.fail(ExitCode::BadValue, key + " cannot be \"" + arguments.value +
                                             "\": its type is " + typeName(*type));
        return std::nullopt;
    }
    if (const XErr err = confCheckEntry(key, *stored); err != XERR_SUCCESS) {
        session.failStatus(ExitCode::BadValue, key + " and its value make no line of the file",
                           err);
        return std::nullopt;
    }
    return KeyInfo{key, *type, KeyState::Value, *stored};
}

int stageAndCommit(const KeyInfo& change, const std::string& file) {
    const int status = stage(change.key, change.type, change.text);
    if (status != BRIDGE_SUCCESS) return status;
    return file.empty() ? bridgeConfCommit() : bridgeConfCommitToFile(file.c_str());
}

void run(Session& session, const Arguments& arguments) {
    if (session.noConf && arguments.file.empty()) {
        session.fail(ExitCode::Usage, "--no-conf leaves no file to commit to: add --to FILE");
        return;
    }
    if (!session.start()) return;
    const std::optional<KeyInfo> change = checkedChange(session, arguments);
    if (!change) return;
    const std::optional<KeyInfo> old = session.configuration().find(change->key);
    const std::string before = old ? shownValue(*old) : "unset";
    if (const int status = stageAndCommit(*change, arguments.file); status != BRIDGE_SUCCESS) {
        session.failStatus(ExitCode::Commit, "not committed", status);
        return;
    }
    printOut(change->key + ": " + before + " -> " + readValue(*change) + "\n");
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
