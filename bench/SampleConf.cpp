#include "SampleConf.h"

#include <algorithm>
#include <cstddef>
#include <random>
#include <utility>

#include "Bench.h"
#include "conf/Conf.h"
#include "conf/ConfKey.h"

namespace {

constexpr unsigned kSeed = 20240307;

std::string instanceValue(const std::string& property, const ConfProperty& declared, int number) {
    if (property == "cpus") return std::to_string(1 + number % 8);
    if (property == "ram") return std::to_string(1024 * (1 + number % 4));
    if (property == "display_name") return "Vantrel " + std::to_string(number);
    if (property == "device_profile_code") return "stul";
    if (property == "graphics_engine") return "aga";
    if (property == "graphics_renderer") return number % 2 == 0 ? "gl" : "dx";
    if (property == "android_id") return "9774d56d682e549c";
    if (property == "adb_port") return std::to_string(5555 + number % 5000);
    return declared.defaultValue;
}

std::string globalValue(const ConfProperty& declared) {
    // Keys that cannot be read before they are set.
    return declared.type == ConfType::Bool && declared.defaultValue.empty() ? "0"
                                                                            : declared.defaultValue;
}

bool hasType(const ConfCatalogue& catalogue, const std::string& key, ConfType type) {
    const ConfKey parts = confSplitKey(key);
    const bool isInstance = parts.scope == ConfScope::Instance;
    if (type == ConfType::None) return isInstance;
    return confGetPropType(catalogue, parts.property, isInstance) == type;
}

}  // namespace

std::string instanceName(int number) {
    std::string digits = std::to_string(number);
    digits.insert(0, 5 - std::min<std::size_t>(5, digits.size()), '0');
    return "Nougat64_" + digits;
}

KeyValues sampleValues(int instances) {
    const ConfCatalogue catalogue = confProductCatalogue();
    KeyValues values;
    for (const auto& [name, declared] : catalogue.globals()) {
        values[confGlobalKey(name)] = globalValue(declared);
    }
    for (int i = 0; i < instances; ++i) {
        const std::string prefix = confInstancePrefix(instanceName(i));
        for (const auto& [name, declared] : catalogue.instances()) {
            values[prefix + name] = instanceValue(name, declared, i);
        }
    }
    return values;
}

std::string sampleText(const KeyValues& values) {
    std::string text;
    for (const auto& [key, value] : values) {
        text.append(key).append("=\"").append(value).append("\"\n");
    }
    return text;
}

std::vector<std::string> someKeys(const KeyValues& values, ConfType type, std::size_t count) {
    const ConfCatalogue catalogue = confProductCatalogue();
    std::vector<std::string> fitting;
    for (const auto& [key, value] : values) {
        if (hasType(catalogue, key, type)) fitting.push_back(key);
    }
    std::mt19937 random(kSeed);
    for (std::size_t i = fitting.size(); i > 1; --i)
        std::swap(fitting[i - 1], fitting[random() % i]);
    if (fitting.size() > count) fitting.resize(count);
    benchCheck(!fitting.empty(), "no key of that type");
    return fitting;
}

SampleStore::SampleStore(int instances) : values(sampleValues(instances)) {
    folder.write("vantrel.conf", sampleText(values));
    path = folder / "vantrel.conf";
    benchCheck(confLibInit(store, path, /*allowDeprecated=*/false) == XERR_SUCCESS, "init failed");
}
