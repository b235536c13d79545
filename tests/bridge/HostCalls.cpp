#include "HostCalls.h"

#include <initializer_list>

std::vector<std::string> hostCalls;

namespace {

void write(const char* name, std::initializer_list<std::string> arguments) {
    std::string line = name;
    char before = '(';
    for (const std::string& argument : arguments) {
        line.append(1, before).append(argument);
        before = '|';
    }
    hostCalls.push_back(line + (before == '(' ? "()" : ")"));
}

}  // namespace

BridgeCallbacks writingHost() {
    return {
        [](const char* instance, const char* package, const char* activity, const char* appLabel,
           bridge_i32 versionCode, const char* versionName, const char* iconFilePath,
           bridge_bool isUpdate) {
            write("onAppInstalled",
                  {instance, package, activity, appLabel, std::to_string(versionCode), versionName,
                   iconFilePath, std::to_string(isUpdate)});
        },
        [](const char* instance, const char* package) {
            write("onAppUninstalled", {instance, package});
        },
        [](const char* instance, bridge_i32 status, const char* apkFilePath) {
            write("onApkInstallCompleted", {instance, std::to_string(status), apkFilePath});
        },
        [] { write("onInstanceListUpdated", {}); },
        [](const char* imageName, bridge_i32 status, double progress) {
            write("installImageProgress",
                  {imageName, std::to_string(status), std::to_string(progress)});
        },
        [](bridge_i32 status, const char* instance) {
            write("onCreateInstanceCompleted", {std::to_string(status), instance});
        },
        [](const char* instance) { write("onInstanceConfigurationChanged", {instance}); },
        [](const char* instance, const char* package) {
            write("onAppDisplayed", {instance, package});
        },
        [](const char* instance, const char* emailId, bridge_i32 action) {
            write("onAccountListUpdated", {instance, emailId, std::to_string(action)});
        },
    };
}
