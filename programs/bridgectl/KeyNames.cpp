#include "KeyNames.h"

#include <optional>
#include <vector>

#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"
#include "shared/Nearest.h"

namespace {

std::vector<std::string> namesOf(const ConfSchema& schema) {
    std::vector<std::string> names;
    for (const auto& [name, property] : schema) names.push_back(name);
    return names;
}

}  // namespace

std::string keyHint(const Configuration& configuration, const std::string& key) {
    const std::string whole = confGlobalKey(key);
    if (configuration.typeOf(whole)) return "did you mean " + whole + "?";
    // Compares only the last part: a common prefix would make all keys similar.
    const ConfCatalogue catalogue = confProductCatalogue();
    const ConfKey parts = confSplitKey(key);
    const bool isGlobal = parts.scope == ConfScope::Global;
    if (parts.scope == ConfScope::None) return {};
    const std::optional<std::string> name = nearestName(
        parts.property, namesOf(isGlobal ? catalogue.globals() : catalogue.instances()));
    if (!name) return {};
    const std::string prefix =
        isGlobal ? std::string(CONF_PREFIX) : confInstancePrefix(parts.instance);
    return "did you mean " + prefix + *name + "?";
}
