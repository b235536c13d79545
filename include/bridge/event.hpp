/**
 * @file event.hpp
 * @brief Events as values, for hosts that take them from a queue.
 */
#ifndef BRIDGE_EVENT_HPP
#define BRIDGE_EVENT_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace bridge {

/** What the callbacks of bridge.h are handed; numbers are the sender's. */
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

/** An APK file that was handed to an instance has been dealt with. */
struct ApkInstallCompleted {
    std::string instance;
    std::int32_t status = 0;
    std::string apkFilePath;
};

/** The list of instances changed; the configuration has been loaded again. */
struct InstanceListUpdated {};

/** Progress of an image installation. */
struct InstallImageProgress {
    std::string imageName;
    std::int32_t status = 0;
    double progress = 0;
};

/** A new instance was created, or could not be. */
struct CreateInstanceCompleted {
    std::int32_t status = 0;
    std::string instance;
};

/** The configuration of an instance changed; it has been loaded again. */
struct InstanceConfigurationChanged {
    std::string instance;
};

/** An app came to the front. */
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

/** The name of an event's kind: "appDisplayed". */
inline std::string_view nameOf(const Event& event) noexcept { return kEventNames[event.index()]; }

}  // namespace bridge

#endif
