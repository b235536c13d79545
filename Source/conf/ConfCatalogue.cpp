// The declared properties.
#include "conf/ConfCatalogue.h"

#include <algorithm>
#include <utility>

namespace {

const ConfProperty* find(const ConfSchema& schema, std::string_view name) {
    const auto found = schema.find(name);
    return found == schema.end() ? nullptr : &found->second;
}

ConfProperty propertyOf(const ConfCatalogueRow& row) {
    // No property of the product is deprecated at present.
    return {row.type, row.defaultValue, row.excludeFromAllConfigs, /*deprecated=*/false};
}

}  // namespace

void ConfSchema::put(const std::string& name, ConfProperty property) {
    const auto at = entries_.begin() + static_cast<std::ptrdiff_t>(countBefore(name));
    if (at != entries_.end() && at->first == name) {
        at->second = std::move(property);
    } else {
        entries_.insert(at, {name, std::move(property)});
    }
}

std::size_t ConfSchema::countBefore(std::string_view name) const {
    const auto at = std::lower_bound(
        entries_.begin(), entries_.end(), name,
        [](const Entry& entry, std::string_view wanted) { return entry.first < wanted; });
    return static_cast<std::size_t>(at - entries_.begin());
}

ConfSchema::const_iterator ConfSchema::find(std::string_view name, std::size_t hint) const {
    if (hint < entries_.size() && entries_[hint].first == name) {
        return entries_.begin() + static_cast<std::ptrdiff_t>(hint);
    }
    const auto at = entries_.begin() + static_cast<std::ptrdiff_t>(countBefore(name));
    return at != entries_.end() && at->first == name ? at : entries_.end();
}

void ConfCatalogue::registerGlobal(const std::string& name, ConfProperty property) {
    globals_.put(name, std::move(property));
}

void ConfCatalogue::registerInstance(const std::string& name, ConfProperty property) {
    instances_.put(name, std::move(property));
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
