// The directories of declared properties.
#include "conf/ConfCatalogue.h"

#include <utility>

namespace {

const ConfProperty* find(const ConfDirectory& directory, std::string_view name) {
    const auto found = directory.find(name);
    return found == directory.end() ? nullptr : &found->second;
}

ConfProperty propertyOf(const ConfCatalogueRow& row) {
    // No property of the product is deprecated at present.
    return {row.type, row.defaultValue, row.excludeFromAllConfigs, /*deprecated=*/false};
}

}  // namespace

void ConfCatalogue::registerGlobal(const std::string& name, ConfProperty property) {
    globals_[name] = std::move(property);
}

void ConfCatalogue::registerInstance(const std::string& name, ConfProperty property) {
    instances_[name] = std::move(property);
}

const ConfProperty* ConfCatalogue::findGlobal(std::string_view name) const {
    return find(globals_, name);
}

const ConfProperty* ConfCatalogue::findInstance(std::string_view name) const {
    return find(instances_, name);
}

ConfType confGetPropType(const ConfCatalogue& catalogue, std::string_view name,
                         bool isInstanceProp) {
    const ConfProperty* property = isInstanceProp ? catalogue.findInstance(name) : nullptr;
    if (property == nullptr) property = catalogue.findGlobal(name);
    return property == nullptr ? ConfType::None : property->type;
}

ConfCatalogue confProductCatalogue() {
    ConfCatalogue catalogue;
    for (const ConfCatalogueRow& row : confGlobalRows()) {
        catalogue.registerGlobal(row.name, propertyOf(row));
    }
    for (const ConfCatalogueRow& row : confInstanceRows()) {
        catalogue.registerInstance(row.name, propertyOf(row));
    }
    return catalogue;
}
