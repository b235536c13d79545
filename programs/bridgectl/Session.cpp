#include "Session.h"

#include <bridge/bridge.h>

#include <stdexcept>
#include <utility>

#include "Console.h"
#include "LibraryText.h"
#include "conf/ConfFiles.h"
#include "conf/ConfKey.h"
#include "utl/UtlFolders.h"

namespace {

std::string taken(const LibraryText& text) {
    if (text == nullptr) throw std::runtime_error("the library gave no text; see the log");
    return text.get();
}

}  // namespace

Session::~Session() { stop(); }

void Session::stop() {
    if (std::exchange(started_, false)) bridgeApiFini();
}

bool Session::start() {
    std::string content;
    if (!noConf) {
        // A missing file is the library's to report.
        static_cast<void>(confDiskFiles().read(utlGetDataDir() + "vantrel.conf", content));
    }
    configuration_.emplace(content);
    if (!requireLog()) return false;
    const int status = bridgeApiInitEx(client.c_str(), noConf ? 1 : 0, 0,
                                       logFile.empty() ? nullptr : logFile.c_str());
    started_ = status == BRIDGE_SUCCESS;
    return started_ || failStatus(ExitCode::Library, "the library did not start", status);
}

bool Session::failInvalid(const KeyInfo& key) {
    return fail(ExitCode::BadValue,
                key.key + " holds no " + typeName(key.type) + ": \"" + key.text + "\"");
}

std::optional<ConfType> Session::requireType(const std::string& key) {
    const std::optional<ConfType> type = configuration().typeOf(key);
    if (!type) fail(ExitCode::UnknownName, "no such key: " + key);
    return type;
}

std::optional<KeyInfo> Session::requireKey(const std::string& key) {
    if (!requireType(key)) return std::nullopt;
    std::optional<KeyInfo> info = configuration().find(key);
    // The property exists, so that what is missing is the instance.
    if (!info) failInstance(confSplitKey(key).instance);
    return info;
}

std::string readValue(const KeyInfo& key) {
    switch (key.type) {
        case ConfType::Bool:
            return bridgeConfGetBool(key.key.c_str()) != 0 ? "true" : "false";
        case ConfType::I32:
            return std::to_string(bridgeConfGetI32(key.key.c_str()));
        case ConfType::I64:
            return std::to_string(bridgeConfGetI64(key.key.c_str()));
        case ConfType::MultiString:
            return taken(LibraryText(bridgeConfGetMultiString(key.key.c_str())));
        case ConfType::String:
            return taken(LibraryText(bridgeConfGetString(key.key.c_str())));
        case ConfType::None:
            break;
    }
    return {};
}

std::string shownValue(const KeyInfo& key) {
    switch (key.state) {
        case KeyState::Unset:
            return "unset";
        case KeyState::Invalid:
            return "invalid: \"" + key.text + "\"";
        case KeyState::Value:
            break;
    }
    return readValue(key);
}
