/**
 * @file event.hpp
 * @brief Events as values, for hosts that read them from a queue.
 */
#ifndef BRIDGE_EVENT_HPP
#define BRIDGE_EVENT_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace bridge {

/** One type for each callback of bridge.h, with the callback's arguments. */
namespace events {

/** An app was installed or updated. */
struct AppInstalled {
    std::string instance;
    std::string package;
    std::string activity;
    std::string appLabel;
    std::int32_t versionCode = 0;
    std::string versionName;
    std::string iconFilePath;
    bool isUpdate = false;
};

/** An app was uninstalled. */
struct AppUninstalled {
    std::string instance;
    std::string package;
};

/** The installation of an APK file succeeded or failed. */
struct ApkInstallCompleted {
    std::string instance;
    std::int32_t status = 0;
    std::string apkFilePath;
};

/** The list of instances changed, and the library has reloaded the configuration. */
struct InstanceListUpdated {};

/** An image installation made progress. */
struct InstallImageProgress {
    std::string imageName;
    std::int32_t status = 0;
    double progress = 0;
};

/** The creation of an instance succeeded or failed. */
struct CreateInstanceCompleted {
    std::int32_t status = 0;
    std::string instance;
};

/** The configuration of an instance changed, and the library has reloaded it. */
struct InstanceConfigurationChanged {
    std::string instance;
};

/** An app came to the foreground. */
struct AppDisplayed {
    std::string instance;
    std::string package;
};

/** The accounts of an instance changed. */
struct AccountListUpdated {
    std::string instance;
    std::string emailId;
    std::int32_t action = 0;
};

}  // namespace events

/** Any event, in the order of the slots of bridgeRegisterCallbacks(). */
using Event =
    std::variant<events::AppInstalled, events::AppUninstalled, events::ApkInstallCompleted,
                 events::InstanceListUpdated, events::InstallImageProgress,
                 events::CreateInstanceCompleted, events::InstanceConfigurationChanged,
                 events::AppDisplayed, events::AccountListUpdated>;

/** The names of the events, in the same order. */
inline constexpr std::string_view kEventNames[] = {"appInstalled",
                                                   "appUninstalled",
                                                   "apkInstallCompleted",
                                                   "instanceListUpdated",
                                                   "installImageProgress",
                                                   "createInstanceCompleted",
                                                   "instanceConfigurationChanged",
                                                   "appDisplayed",
                                                   "accountListUpdated"};

/** The name of an event, such as "appDisplayed". */
inline std::string_view nameOf(const Event& event) noexcept { return kEventNames[event.index()]; }

}  // namespace bridge

#endif
