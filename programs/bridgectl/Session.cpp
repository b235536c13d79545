#include "Session.h"

#include <bridge/bridge.h>

#include <memory>

#include "Console.h"
#include "conf/ConfFiles.h"
#include "utl/UtlFolders.h"
#include "xpl/Xfile.h"

namespace {

struct FreeText {
    void operator()(char* text) const noexcept { bridgeFreeMemory(text); }
};

std::string taken(char* text) {
    const std::unique_ptr<char, FreeText> owner(text);
    return text == nullptr ? std::string() : text;
}

}  // namespace

// A log that cannot be opened ends the process inside the library without a word.
bool Session::logCanBeOpened() {
    const std::string path = logFile.empty() ? utlPlayerLogPath() : logFile;
    Xfile file;
    const XErr err = xfileOpen(file, path, XfileMode::Append);
    return err == XERR_SUCCESS ||
           failStatus(ExitCode::Library, "cannot open the log file " + path, err);
}

bool Session::start() {
    std::string content;
    if (!noConf) {
        // A missing file is the library's to report.
        static_cast<void>(confDiskFiles().read(utlGetDataDir() + "vantrel.conf", content));
    }
    configuration_.emplace(content);
    if (!logCanBeOpened()) return false;
    const int status = bridgeApiInitEx(client.c_str(), noConf ? 1 : 0, 0,
                                       logFile.empty() ? nullptr : logFile.c_str());
    return status == BRIDGE_SUCCESS ||
           failStatus(ExitCode::Library, "the library did not start", status);
}

bool Session::fail(ExitCode code, const std::string& message) {
    printError(message);
    exitCode = code;
    return false;
}

bool Session::failStatus(ExitCode code, const std::string& what, int status) {
    return fail(code, what + ": " + std::to_string(status) + " " + xerrName(status));
}

std::optional<KeyInfo> Session::requireKey(const std::string& key) {
    std::optional<KeyInfo> info = configuration().find(key);
    if (!info) fail(ExitCode::UnknownName, "no such key: " + key);
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
            return taken(bridgeConfGetMultiString(key.key.c_str()));
        case ConfType::String:
            return taken(bridgeConfGetString(key.key.c_str()));
        case ConfType::None:
            break;
    }
    return {};
}
