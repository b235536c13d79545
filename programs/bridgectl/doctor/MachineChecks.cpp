// Checks of locks, servers and loaded files.
#include <bridge/bridge.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "CompletionNames.h"
#include "LibraryVersion.h"
#include "doctor/Checks.h"
#include "doctor/System.h"
#include "shared/Joined.h"
#include "utl/UtlFolders.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"

namespace {

constexpr std::chrono::seconds kLockLimit{2};

constexpr const char* kModules[] = {"QX-Bridge.dll", "Qt5Core.dll", "Qt5Network.dll"};

Finding lockFinding(const std::string& name) {
    switch (lockState(name, kLockLimit)) {
        case LockState::Free:
            return {FindingLevel::Ok, "lock", name + " is free", {}};
        case LockState::Held:
            return {FindingLevel::Problem, "lock",
                    name + " was held for two seconds: front ends wait for it",
                    "end the product's program that hangs"};
        case LockState::Refused:
            break;
    }
    return {
        FindingLevel::Problem, "lock", name + " cannot be opened: front ends end",
        "find the program that created it: another user's, or one with a higher integrity level"};
}

std::vector<std::string> serverNames(const Configuration& configuration) {
    std::vector<std::string> names;
    for (const std::string& client : clientIds()) {
        names.push_back(utlLocalObjectName(client + "_bridge"));
    }
    names.push_back(utlLocalObjectName("mim"));
    for (const std::string& instance : configuration.instances()) {
        names.push_back(utlLocalObjectName("plr_" + instance));
    }
    return names;
}

bool isFile(const std::string& path) {
    XfileAttributes attributes;
    return xfileAttributes(path, attributes) == XERR_SUCCESS && !attributes.isFolder;
}

// Compares with the loaded module. Another program may load the other file.
void addSecondFiles(Findings& findings, const std::string& module) {
    const std::string loaded = modulePath(module);
    const std::string folder = loaded.substr(0, loaded.find_last_of('\\'));
    for (const std::string& other : searchFolders()) {
        std::string second = other;
        while (!second.empty() && second.back() == '\\') second.pop_back();
        if (!isFile(second + "\\" + module) || isSameFolder(second, folder)) continue;
        findings.push_back({FindingLevel::Problem, "files",
                            module + " is in " + folder + " and in " + second,
                            "remove one: Windows may load either"});
        return;
    }
}

void addSignature(Findings& findings) {
    std::vector<std::string> names;
    for (const char* module : {"", kModules[0], kModules[1], kModules[2]}) {
        const std::string path = modulePath(module);
        if (!isSigned(path)) names.push_back(path.substr(path.find_last_of('\\') + 1));
    }
    if (names.empty()) return;
    const bool isRefused = unsignedFilesAreRefused();
    findings.push_back({isRefused ? FindingLevel::Problem : FindingLevel::Note, "files",
                        "not signed: " + joined(names, ", "),
                        isRefused ? "sign them: Windows refuses unsigned files here"
                                  : "sign them before a policy of Windows refuses them"});
}

Finding versionsFinding() {
    const std::string core = fileVersion(modulePath(kModules[1]));
    const std::string network = fileVersion(modulePath(kModules[2]));
    const std::string text = "QX-Bridge.dll " + libraryVersion() + ", Qt5Core.dll " + core +
                             ", Qt5Network.dll " + network;
    const bool fits =
        libraryVersion() == BRIDGE_VERSION_TEXT && core == network && core.rfind("5.15.", 0) == 0;
    if (fits) return {FindingLevel::Ok, "versions", text, {}};
    return {FindingLevel::Problem, "versions", text + ", bridgectl.exe " BRIDGE_VERSION_TEXT,
            "take all of them from one package"};
}

}  // namespace

Findings lockFindings(const Configuration& configuration) {
    Findings findings{lockFinding(utlGlobalObjectName("conf"))};
    for (const std::string& instance : configuration.instances()) {
        findings.push_back(lockFinding(utlGlobalObjectName("appc_" + instance)));
    }
    return findings;
}

Findings serverFindings(const Configuration& configuration) {
    Findings findings;
    for (const std::string& name : serverNames(configuration)) {
        const std::optional<PipeServer> server = pipeServer(name);
        if (!server) continue;
        const std::string image = server->image.empty() ? "a process" : server->image;
        findings.push_back(
            {FindingLevel::Ok,
             "server",
             name + " is served by " + image + " (process " + std::to_string(server->process) + ")",
             {}});
    }
    if (findings.empty())
        findings.push_back({FindingLevel::Ok, "server", "no server is running", {}});
    return findings;
}

Findings moduleFindings() {
    Findings findings{versionsFinding()};
    for (const char* module : kModules) addSecondFiles(findings, module);
    addSignature(findings);
    return findings;
}
