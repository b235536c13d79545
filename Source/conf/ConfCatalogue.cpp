// The directories of declared properties.
#include "conf/ConfCatalogue.h"

#include <algorithm>
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

ConfDirectory::ConfDirectory(std::initializer_list<Entry> entries) {
    for (const auto& [name, property] : entries) put(name, property);
}

void ConfDirectory::put(const std::string& name, ConfProperty property) {
    const auto at = std::lower_bound(
        entries_.begin(), entries_.end(), name,
        [](const Entry& entry, const std::string& wanted) { return entry.first < wanted; });
    if (at != entries_.end() && at->first == name) {
        at->second = std::move(property);
        return;
    }
    entries_.insert(at, {name, std::move(property)});
    index_.clear();
    for (const Entry& entry : entries_) {
        index_.reserveOne();
        index_.add(entry.first, entry);
    }
}

ConfDirectory::const_iterator ConfDirectory::find(std::string_view name) const {
    const Entry* const found = index_.find(name);
    return found == nullptr ? entries_.end() : entries_.begin() + (found - entries_.data());
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
