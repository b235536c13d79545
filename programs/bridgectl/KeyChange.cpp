#include "KeyChange.h"

#include <bridge/bridge.h>

#include <optional>

#include "KeyValue.h"
#include "conf/ConfCatalogue.h"
#include "shared/JsonValue.h"

namespace {

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

int stageAndCommit(Session& session, const KeyInfo& change, const std::string& file) {
    const int status = stage(session, change);
    if (status != BRIDGE_SUCCESS) return status;
    if (file.empty()) return session.timed("bridgeConfCommit", bridgeConfCommit);
    return session.timed("bridgeConfCommitToFile",
                         [&file] { return bridgeConfCommitToFile(file.c_str()); });
}

}  // namespace

void commitChange(Session& session, const KeyInfo& change, const std::string& file) {
    const std::optional<KeyInfo> old = session.configuration().find(change.key);
    const std::string before = old ? shownValue(session, *old) : "unset";
    const JsonValue beforeJson = old ? valueJson(session, *old) : nullptr;
    if (const int status = stageAndCommit(session, change, file); status != BRIDGE_SUCCESS) {
        session.failStatus(ExitCode::Commit, "not committed", status,
                           configurationHint(file.empty() ? configurationPath() : file));
        return;
    }
    JsonObject json = keyJson(session, change);
    json.push_back({"before", beforeJson});
    session.confirm(change.key + ": " + before + " -> " + readValue(session, change), json);
}
