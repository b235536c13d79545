#include "Session.h"

#include <bridge/bridge.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "CompletionNames.h"
#include "KeyNames.h"
#include "conf/ConfCatalogue.h"
#include "conf/ConfFiles.h"
#include "conf/ConfKey.h"
#include "shared/Console.h"
#include "shared/Joined.h"
#include "shared/Nearest.h"

Session::~Session() { stop(); }

void Session::stop() {
    if (std::exchange(started_, false)) timed("bridgeApiFini", bridgeApiFini);
}

void Session::useFolders() {
    if (dataFolder && installFolder) registry_.useFolders(*dataFolder, *installFolder);
}

int Session::startLibrary() {
    if (!noConf && logFile.empty()) {
        return timed("bridgeApiInit", [this] { return bridgeApiInit(client.c_str()); });
    }
    return timed("bridgeApiInitEx", [this] {
        return bridgeApiInitEx(client.c_str(), noConf ? 1 : 0, 0,
                               logFile.empty() ? nullptr : logFile.c_str());
    });
}

bool Session::start() {
    std::string content;
    if (!noConf) {
        // Ignored: the library reports a missing file.
        static_cast<void>(confDiskFiles().read(configurationPath(), content));
    }
    configuration_.emplace(content);
    if (!requireLog()) return false;
    const int status = startLibrary();
    started_ = status == BRIDGE_SUCCESS;
    return started_ ||
           failStatus(ExitCode::Library, "the library did not start", status, startHint());
}

std::string Session::startHint() const {
    const std::vector<std::string>& ids = clientIds();
    if (std::find(ids.begin(), ids.end(), client) == ids.end()) {
        return "--client must be one of " + joined(ids, ", ");
    }
    return "the configuration is " + configurationPath() + ", the log " + logPath() + "; " +
           dataFolderHint() + "; see bridgectl doctor";
}

void Session::printTimes() const {
    if (!timing) return;
    for (const std::string& line : times_.lines()) printNotice(line);
}

bool Session::failInstance(std::string_view instance) {
    if (!configuration_) return ProgramRun::failInstance(instance);
    const std::set<std::string>& known = configuration().instances();
    return ProgramRun::failInstance(instance, nearestHint(instance, {known.begin(), known.end()}));
}

bool Session::requireInstance(const std::string& instance) {
    return noConf || configuration().instances().count(instance) > 0 || failInstance(instance);
}

bool Session::failInvalid(const KeyInfo& key) {
    return fail(ExitCode::BadValue,
                key.key + " is not of type " + typeName(key.type) + ": \"" + key.text + "\"",
                "set it: bridgectl conf set " + key.key + " VALUE");
}

std::optional<ConfType> Session::requireType(const std::string& key) {
    const std::optional<ConfType> type = configuration().typeOf(key);
    if (!type) fail(ExitCode::UnknownName, "no such key: " + key, keyHint(configuration(), key));
    return type;
}

std::optional<KeyInfo> Session::requireKey(const std::string& key) {
    if (!requireType(key)) return std::nullopt;
    std::optional<KeyInfo> info = configuration().find(key);
    // The key has a type, so only its instance can be missing.
    if (!info) failInstance(confSplitKey(key).instance);
    return info;
}
