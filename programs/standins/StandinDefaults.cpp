#include "StandinDefaults.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "StandinCommandLine.h"
#include "StandinDecode.h"
#include "ipc/IpcRequest.h"

namespace {

using Words = std::vector<std::string>;

// The values of a command line's options, in the order of its table row.
using Values = std::vector<std::string>;

// The package is named after the file. All other fields are made up.
std::vector<Words> apkRows(const Values& values) {
    const std::string& file = values[1];
    const std::string name = file.substr(file.find_last_of("\\/") + 1);
    const std::string package = name.substr(0, name.rfind('.'));
    return {{"app-installed", values[0], package, package + ".MainActivity", package, "1", "1.0",
             "", "false"},
            {"apk-install-completed", values[0], "0", file}};
}

std::vector<Words> appDisplayedRows(const Values& values) {
    return {{"app-displayed", values[0], values[1]}};
}

std::vector<Words> appUninstalledRows(const Values& values) {
    return {{"app-uninstalled", values[0], values[1]}};
}

// Status 1: in progress. Status 2: installed.
std::vector<Words> imageRows(const Values& values) {
    return {{"image-install-progress", values[0], "1", "25"},
            {"image-install-progress", values[0], "1", "50"},
            {"image-install-progress", values[0], "1", "75"},
            {"image-install-progress", values[0], "2", "100"}};
}

// The new instance is always the image's second.
std::vector<Words> createdRows(const Values& values) {
    return {{"create-instance-completed", "0", values[0] + "_1"}, {"instance-list-updated"}};
}

std::vector<Words> noRows(const Values& /*values*/) { return {}; }

struct Command {
    const char* word;
    std::array<const char*, 2> options;  // null after the last one
    std::vector<Words> (*rows)(const Values& values);
};

constexpr Command kCommands[] = {
    {"launchApp", {"instance", "package"}, appDisplayedRows},
    {"installApp", {}, noRows},
    {"launchUrl", {}, noRows},
    {"installApk", {"instance", "filepath"}, apkRows},
    {"uninstallApp", {"instance", "package"}, appUninstalledRows},
    {"installImage", {"imageName"}, imageRows},
    {"createFreshInstance", {"imageName"}, createdRows},
};

const Command* findCommand(std::string_view word) {
    for (const Command& command : kCommands) {
        if (command.word == word) return &command;
    }
    return nullptr;
}

bool isRequest(std::string_view word, StandinRequests requests) {
    return std::any_of(requests.first, requests.first + requests.count,
                       [word](const IpcRequest& request) { return request.name == word; });
}

}  // namespace

bool standinIsCommand(std::string_view word) {
    return findCommand(word) != nullptr || isRequest(word, standinPlayerRequests()) ||
           isRequest(word, standinManagerRequests());
}

std::vector<StandinEvent> standinDefaultEvents(const Words& arguments) {
    const Command* const command = findCommand(standinOption(arguments, "cmd").value_or(""));
    if (command == nullptr) return {};
    Values values;
    for (const char* const option : command->options) {
        if (option == nullptr) break;
        std::optional<std::string> value = standinOption(arguments, option);
        if (!value) return {};
        values.push_back(std::move(*value));
    }
    std::vector<StandinEvent> events;
    std::string unused;  // the rows have no errors
    for (const Words& row : command->rows(values)) {
        events.push_back(standinParseEvent(row, unused).value());
    }
    return events;
}
