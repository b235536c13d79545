// The instance listing, and the commit into a file of the host's choice.
#include "bridge/BridgeConf.h"

#include <cstddef>
#include <cstdint>

#include "bridge/BridgeEntry.h"
#include "conf/ConfKey.h"
#include "utl/UtlImages.h"
#include "utl/UtlJson.h"

namespace {

// About the size of an element.
constexpr std::size_t kElementSize = 320;

// What is read of an instance, in this order: an unknown image, a key that is being removed and a
// number that cannot be read are fatal, and the first one says so.
struct Instance {
    Instance(ConfStore& store, const std::string& instanceName) : name(instanceName) {
        imageName = utlGetImageTrait(utlImageNameOfInstance(name)).name;
        std::string key = confInstancePrefix(name);
        const std::size_t prefix = key.size();
        const auto keyOf = [&](const char* property) -> const std::string& {
            return key.replace(prefix, std::string::npos, property);
        };
        deviceProfile = confGetString(store, keyOf("device_profile_code"));
        graphicsEngine = confGetString(store, keyOf("graphics_engine"));
        graphicsRenderer = confGetString(store, keyOf("graphics_renderer"));
        displayName = confGetString(store, keyOf("display_name"));
        ram = confGetI32(store, keyOf("ram"));
        cpu = confGetI32(store, keyOf("cpus"));  // the one that is not shown under its name
    }

    const std::string& name;
    const char* imageName;
    std::string deviceProfile;
    std::string graphicsEngine;
    std::string graphicsRenderer;
    std::string displayName;
    std::int32_t ram;
    std::int32_t cpu;
};

}  // namespace

std::string bridgeInstancesJson(ConfStore& store) {
    const auto names = confGetInstances(store);
    UtlJsonArray array(names.size() * kElementSize);
    for (const std::string& name : names) {
        const Instance instance(store, name);
        array.object();
        array.member("cpu", instance.cpu);
        array.member("deviceProfile", instance.deviceProfile);
        array.member("displayName", instance.displayName);
        array.member("graphicsEngine", instance.graphicsEngine);
        array.member("graphicsRenderer", instance.graphicsRenderer);
        array.member("imageName", instance.imageName);
        array.member("instance", instance.name);
        array.member("ram", instance.ram);
    }
    return array.take();
}

XErr internal::bridgeConfCommitToFile(ConfStore& store, const std::string& path) {
    XLOG_I(kLog, "bridgeConfCommitToFile args: %s", path.c_str());
    return confCommitToFile(store, path);
}
