/**
 * @file callbacks.hpp
 * @brief The host's functions for events.
 */
#ifndef BRIDGE_CALLBACKS_HPP
#define BRIDGE_CALLBACKS_HPP

#include <cstdint>
#include <exception>
#include <functional>
#include <string_view>

namespace bridge {

/** An installed or updated app. The strings are valid only during the call. */
struct AppInstalled {
    std::string_view instance;
    std::string_view package;
    std::string_view activity;
    std::string_view appLabel;
    std::int32_t versionCode;
    std::string_view versionName;
    std::string_view iconFilePath;
    bool isUpdate;
};

/**
 * The host's functions. Each may be empty. They run one at a time on the library's event thread.
 * Their strings are valid only during the call.
 */
struct Callbacks {
    std::function<void(const AppInstalled& app)> appInstalled;
    std::function<void(std::string_view instance, std::string_view package)> appUninstalled;
    std::function<void(std::string_view instance, std::int32_t status,
                       std::string_view apkFilePath)>
        apkInstallCompleted;
    std::function<void()> instanceListUpdated;
    std::function<void(std::string_view imageName, std::int32_t status, double progress)>
        installImageProgress;
    std::function<void(std::int32_t status, std::string_view instance)> createInstanceCompleted;
    std::function<void(std::string_view instance)> instanceConfigurationChanged;
    std::function<void(std::string_view instance, std::string_view package)> appDisplayed;
    std::function<void(std::string_view instance, std::string_view emailId, std::int32_t action)>
        accountListUpdated;

    /** Receives an exception from one of the functions above. Its own exceptions are ignored. */
    std::function<void(std::exception_ptr exception)> failed;
};

}  // namespace bridge

#endif
