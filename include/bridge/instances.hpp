/**
 * @file instances.hpp
 * @brief Lists instances and their apps as records or as JSON.
 */
#ifndef BRIDGE_INSTANCES_HPP
#define BRIDGE_INSTANCES_HPP

#include <bridge/bridge.h>

#include <bridge/conf_check.hpp>
#include <bridge/json.hpp>
#include <bridge/result.hpp>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bridge {

/** An instance in the configuration. */
struct Instance {
    std::string instance;
    std::string displayName;
    std::string imageName;
    std::string deviceProfile;
    std::string graphicsEngine;
    std::string graphicsRenderer;
    std::int32_t ram = 0;
    std::int32_t cpu = 0;
};

/** An app of an instance. The icon file may be missing. */
struct App {
    std::string package;
    std::string activity;
    std::string appLabel;
    std::string versionName;
    std::string iconFilePath;
    std::int32_t versionCode = 0;
};

/** Internal; not for hosts. */
namespace detail {

inline std::string textOf(const JsonObject& object, std::string_view name) {
    const auto found = object.find(name);
    return found == object.end() ? std::string() : found->second;
}

inline std::int32_t numberOf(const JsonObject& object, std::string_view name) {
    return static_cast<std::int32_t>(std::strtol(textOf(object, name).c_str(), nullptr, 10));
}

inline Instance instanceOf(const JsonObject& one) {
    return {textOf(one, "instance"),       textOf(one, "displayName"),
            textOf(one, "imageName"),      textOf(one, "deviceProfile"),
            textOf(one, "graphicsEngine"), textOf(one, "graphicsRenderer"),
            numberOf(one, "ram"),          numberOf(one, "cpu")};
}

inline App appOf(const JsonObject& one) {
    return {textOf(one, "package"),     textOf(one, "activity"),     textOf(one, "appLabel"),
            textOf(one, "versionName"), textOf(one, "iconFilePath"), numberOf(one, "versionCode")};
}

/** The records of a listing, or its failure. */
template <typename Record>
Result<std::vector<Record>> recordsOf(const TextResult& listing,
                                      Record (*recordOf)(const JsonObject&)) {
    if (!listing) return Result<std::vector<Record>>(listing.status());
    std::vector<Record> records;
    for (const JsonObject& one : JsonReader(listing->view()).objects()) {
        records.push_back(recordOf(one));
    }
    return Result<std::vector<Record>>(std::move(records));
}

}  // namespace detail

/** bridgeConfGetInstances(): JSON. Throws KeyError for an instance of an unknown image. */
inline TextResult instances() {
    detail::checkListing();
    return TextResult(bridgeConfGetInstances(), "bridgeConfGetInstances");
}

/** The instances, sorted by name. Throws like instances(). */
inline Result<std::vector<Instance>> instanceList() {
    return detail::recordsOf(instances(), &detail::instanceOf);
}

/** bridgeGetInstalledApps(): JSON. */
inline TextResult installedApps(const std::string& instance) {
    return TextResult(bridgeGetInstalledApps(instance.c_str()), "bridgeGetInstalledApps");
}

/** The apps of an instance, sorted by package. */
inline Result<std::vector<App>> appList(const std::string& instance) {
    return detail::recordsOf(installedApps(instance), &detail::appOf);
}

}  // namespace bridge

#endif
