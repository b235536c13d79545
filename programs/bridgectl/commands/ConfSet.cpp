// bridgectl conf set KEY VALUE [--to FILE]
#include <bridge/bridge.h>

#include <memory>
#include <optional>
#include <string>

#include "Configuration.h"
#include "KeyValue.h"
#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"
#include "conf/ConfText.h"
#include "shared/Command.h"
#include "shared/JsonValue.h"
#include "shared/OptionParser.h"
#include "utl/UtlImages.h"
#include "xpl/Xerr.h"

namespace {

struct Arguments {
    std::string key;
    std::string value;
    std::string file;  // empty: the product's configuration
};

int stage(Session& session, const KeyInfo& change) {
    const auto set = [&session, &change](const char* function, auto call, auto value) {
        return session.timed(function, [&] { return call(change.key.c_str(), value); });
    };
    const std::string& stored = change.text;
    switch (change.type) {
        case ConfType::Bool:
            return set("bridgeConfSetBool", bridgeConfSetBool, bridge_bool{stored == "1"});
        case ConfType::I32:
            return set("bridgeConfSetI32", bridgeConfSetI32, std::stoi(stored));
        case ConfType::I64:
            return set("bridgeConfSetI64", bridgeConfSetI64, std::stoll(stored));
        case ConfType::MultiString:
            return set("bridgeConfSetMultiString", bridgeConfSetMultiString, stored.c_str());
        case ConfType::String:
            return set("bridgeConfSetString", bridgeConfSetString, stored.c_str());
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

int stageAndCommit(Session& session, const KeyInfo& change, const std::string& file) {
    const int status = stage(session, change);
    if (status != BRIDGE_SUCCESS) return status;
    if (file.empty()) return session.timed("bridgeConfCommit", bridgeConfCommit);
    return session.timed("bridgeConfCommitToFile",
                         [&file] { return bridgeConfCommitToFile(file.c_str()); });
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
    const std::string before = old ? shownValue(session, *old) : "unset";
    const JsonValue beforeJson = old ? valueJson(session, *old) : nullptr;
    if (const int status = stageAndCommit(session, *change, arguments.file);
        status != BRIDGE_SUCCESS) {
        session.failStatus(ExitCode::Commit, "not committed", status);
        return;
    }
    JsonObject json = keyJson(session, *change);
    json.push_back({"before", beforeJson});
    session.confirm(change->key + ": " + before + " -> " + readValue(session, *change), json);
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add("KEY", arguments->key, "Full key").required();
    parser.add("VALUE", arguments->value, "New value; true or false for a bool").required();
    parser.add("--to", arguments->file, "Write the configuration into this file instead")
        .notEmpty();
    parser.onRun([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandConfSet;
const Command commandConfSet{"conf", "set", "Sets a key and commits the change",
                             "Example: bridgectl conf set vtr.enable_adb_access true\n"
                             "A value that begins with \"-\" comes behind \"--\".",
                             declare};
