// The instance listing.
#include "bridge/BridgeInstances.h"

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

void appendText(std::string& out, const char* member, std::string_view text) {
    out.append("        \"").append(member).append("\": ");
    utlJsonAppendText(out, text);
    out.append(",\n");
}

// Members are in ascending order of their names, as Qt keeps them.
void appendInstance(std::string& out, const Instance& instance) {
    out.append("    {\n        \"cpu\": ");
    utlJsonAppendNumber(out, instance.cpu);
    out.append(",\n");
    appendText(out, "deviceProfile", instance.deviceProfile);
    appendText(out, "displayName", instance.displayName);
    appendText(out, "graphicsEngine", instance.graphicsEngine);
    appendText(out, "graphicsRenderer", instance.graphicsRenderer);
    appendText(out, "imageName", instance.imageName);
    appendText(out, "instance", instance.name);
    out.append("        \"ram\": ");
    utlJsonAppendNumber(out, instance.ram);
    out.append("\n    }");
}

}  // namespace

std::string bridgeInstancesJson(ConfStore& store) {
    const auto names = confGetInstances(store);
    std::string out;
    out.reserve(names.size() * kElementSize);
    out.append("[\n");
    for (auto name = names.begin(); name != names.end(); ++name) {
        if (name != names.begin()) out.append(",\n");
        appendInstance(out, Instance(store, *name));
    }
    if (!names.empty()) out += '\n';
    return out.append("]\n");
}
