/**
 * @file programs.hpp
 * @brief Starts the product's programs. work.hpp also waits for the outcome.
 */
#ifndef BRIDGE_PROGRAMS_HPP
#define BRIDGE_PROGRAMS_HPP

#include <bridge/bridge.h>

#include <bridge/process.hpp>
#include <bridge/result.hpp>
#include <string>

namespace bridge {

/** Internal; not for hosts. */
namespace detail {

inline Status startedPlayer(bridge_i32 code, const char* operation) {
    if (code == BRIDGE_SUCCESS) return Status(code, operation);
    return Status(code, operation, productValue(L"InstallDir") + "QX-Player.exe");
}

inline Status startedManager(bridge_i32 code, const char* operation) {
    if (code == BRIDGE_SUCCESS) return Status(code, operation);
    return Status(code, operation, productValue(L"InstallDir") + "QX-MultiInstanceManager.exe");
}

}  // namespace detail

/** bridgeLaunchApp() */
inline Status launchApp(const std::string& instance, const std::string& package) {
    return detail::startedPlayer(bridgeLaunchApp(instance.c_str(), package.c_str()),
                                 "bridgeLaunchApp");
}
/** bridgeLaunchAppStore() */
inline Status launchAppStore(const std::string& instance, const std::string& store,
                             const std::string& package) {
    return detail::startedPlayer(
        bridgeLaunchAppStore(instance.c_str(), store.c_str(), package.c_str()),
        "bridgeLaunchAppStore");
}
/** bridgeLaunchUrl() */
inline Status launchUrl(const std::string& instance, const std::string& url) {
    return detail::startedPlayer(bridgeLaunchUrl(instance.c_str(), url.c_str()), "bridgeLaunchUrl");
}
/** bridgeInstallApk() */
inline Status installApk(const std::string& instance, const std::string& apkFilePath) {
    return Status(bridgeInstallApk(instance.c_str(), apkFilePath.c_str()), "bridgeInstallApk",
                  apkFilePath);
}
/** bridgeUninstallApp() */
inline Status uninstallApp(const std::string& instance, const std::string& package) {
    return detail::startedPlayer(bridgeUninstallApp(instance.c_str(), package.c_str()),
                                 "bridgeUninstallApp");
}
/** bridgeInstallImage() */
inline Status installImage(const std::string& imageName) {
    return detail::startedManager(bridgeInstallImage(imageName.c_str()), "bridgeInstallImage");
}

/** The properties of a new instance. Numbers are decimal. */
struct FreshInstance {
    std::string imageName;
    std::string cpu;
    std::string ram;
    std::string graphicEngine;
    std::string graphicRenderer;
    std::string deviceProfile;
};

/** bridgeCreateFreshInstance() */
inline Status createFreshInstance(const FreshInstance& wanted) {
    return detail::startedManager(
        bridgeCreateFreshInstance(wanted.imageName.c_str(), wanted.cpu.c_str(), wanted.ram.c_str(),
                                  wanted.graphicEngine.c_str(), wanted.graphicRenderer.c_str(),
                                  wanted.deviceProfile.c_str()),
        "bridgeCreateFreshInstance");
}

/** bridgePlrShutdown() */
inline Status shutdownPlayer(const std::string& instance, bool flag = false) {
    return Status(bridgePlrShutdown(instance.c_str(), flag ? 1 : 0), "bridgePlrShutdown");
}
/** bridgeShutdown() */
inline void shutdown() { bridgeShutdown(); }

}  // namespace bridge

#endif
