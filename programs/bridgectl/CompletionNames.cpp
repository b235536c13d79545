#include "CompletionNames.h"

#include <nlohmann/json.hpp>

#include "Configuration.h"
#include "conf/ConfFiles.h"
#include "utl/UtlFolders.h"

namespace {

using Words = std::vector<std::string>;

// Empty if the file cannot be read.
std::string contentOf(const std::string& path) {
    std::string content;
    static_cast<void>(confDiskFiles().read(path, content));
    return content;
}

Words keys() {
    Words names;
    const Configuration configuration(contentOf(utlGetDataDir() + "vantrel.conf"));
    for (const KeyInfo& key : configuration.list()) names.push_back(key.key);
    return names;
}

Words instances() {
    const Configuration configuration(contentOf(utlGetDataDir() + "vantrel.conf"));
    return {configuration.instances().begin(), configuration.instances().end()};
}

Words packagesOf(const std::string& instance) {
    const std::string path = utlGetDataDir() + "Engine/" + instance + "/AppCache/AppCache.json";
    const auto apps = nlohmann::json::parse(contentOf(path), nullptr, /*allow_exceptions=*/false);
    Words names;
    if (!apps.is_array()) return names;
    for (const auto& app : apps) {
        const auto package = app.is_object() ? app.find("package") : app.end();
        if (package != app.end() && package->is_string()) names.push_back(*package);
    }
    return names;
}

}  // namespace

const std::vector<std::string>& clientIds() {
    static const Words& ids =
        *new Words{"Launcher", "Installer", "LogCollector", "Helper", "Uninstaller"};
    return ids;
}

std::vector<std::string> completionNames(const OptionNode& option,
                                         const std::vector<std::string>& before) {
    if (option.name == "KEY") return keys();
    if (option.name == "INSTANCE" || option.name == "--instance") return instances();
    if (option.name == "PACKAGE" && !before.empty()) return packagesOf(before.front());
    if (option.name == "--client") return clientIds();
    return {};
}
