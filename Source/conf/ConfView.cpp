// The store's memory.
#include "conf/ConfView.h"

#include <algorithm>

bool ConfView::PrefixOrder::operator()(std::string_view a, std::string_view b) const {
    const std::size_t common = std::min(a.size(), b.size());
    const int order = a.substr(0, common).compare(b.substr(0, common));
    if (order != 0 || a.size() == b.size()) return order < 0;
    // When one name is a prefix of the other, compare "." with the next byte of the longer one.
    const auto next = static_cast<unsigned char>(a.size() < b.size() ? b[common] : a[common]);
    return a.size() < b.size() ? '.' <= next : next < '.';
}

ConfView::Group& ConfView::group(std::string_view instance) {
    const auto found = byName_.find(instance);
    if (found != byName_.end()) return *found->second;
    Group empty{std::vector<ConfValue>(catalogue_.instances().size())};
    const auto added =
        instances_.try_emplace(instances_.end(), std::string(instance), std::move(empty));
    return *byName_.try_emplace(added->first, &added->second).first->second;
}

const ConfValue* ConfView::find(const ConfKey& key) const {
    if (key.declared == nullptr) {
        const auto found = others_.find(key.text);
        return found == others_.end() ? nullptr : &found->second;
    }
    if (key.scope == ConfScope::Global) return &globals_[key.index];
    const auto found = byName_.find(key.instance);
    return found == byName_.end() ? nullptr : &found->second->values[key.index];
}

ConfValue& ConfView::value(const ConfKey& key) {
    if (key.declared == nullptr) return others_[std::string(key.text)];
    if (key.scope == ConfScope::Global) return globals_[key.index];
    return group(key.instance).values[key.index];
}

ConfValue& ConfView::knownValue(const ConfKey& key) {
    if (key.scope != ConfScope::Instance) return value(key);
    Group& known = addInstance(key.instance);
    return key.declared == nullptr ? value(key) : known.values[key.index];
}

void ConfView::list(ConfValue& value) {
    if (value.isListed) return;
    changed_.push_back(&value);
    value.isListed = true;
}

void ConfView::set(ConfValue& value, std::string_view to) {
    if (value.isCommitted && value.committed == to) {
        value.staged.reset();
    } else {
        stage(value, to);
    }
    value.isRemoved = false;
}

void ConfView::stage(ConfValue& value, std::string_view to) {
    list(value);
    if (value.staged == nullptr) {
        value.staged = std::make_unique<std::string>(to);
    } else {
        *value.staged = to;
    }
}

void ConfView::remove(ConfValue& value) {
    list(value);
    value.staged.reset();
    value.isRemoved = true;
}

bool ConfView::hasChanges() const {
    return std::any_of(changed_.begin(), changed_.end(),
                       [](const ConfValue* value) { return value->isChanged(); });
}

void ConfView::discardChanges() noexcept {
    for (ConfValue* const value : changed_) {
        value->staged.reset();
        value->isRemoved = false;
        value->isListed = false;
    }
    changed_.clear();
}

void ConfView::mergeChanges() noexcept {
    for (ConfValue* const value : changed_) {
        if (value->staged != nullptr) {
            value->committed = std::move(*value->staged);
            value->isCommitted = true;
            value->isRead = false;
        }
        if (value->isRemoved) value->erase();
    }
    discardChanges();
}

void ConfView::commitGlobalDefaults() {
    auto value = globals_.begin();
    for (const auto& [name, property] : catalogue_.globals()) {
        (value++)->commit(property.defaultValue);
    }
}

ConfView::Group& ConfView::addInstance(std::string_view name) {
    Group& added = group(name);
    // Defaults first: if this throws, no instance is known without its defaults.
    if (!added.isKnown) addDefaults(name, added);
    added.isKnown = true;
    return added;
}

void ConfView::addDefaults(std::string_view instance, Group& group) {
    // Keys are split at the first ".", so those of a name with a "." are not declared.
    const bool isSplit = instance.find('.') != std::string_view::npos;
    auto own = group.values.begin();
    for (const auto& [name, property] : catalogue_.instances()) {
        ConfValue& value = isSplit ? others_[confInstancePrefix(instance) + name] : *own++;
        if (!value.isCommitted) value.commit(property.defaultValue);
    }
}

void ConfView::forgetInstance(std::string_view name) {
    const auto found = instances_.find(name);
    if (found != instances_.end()) found->second.isKnown = false;
}

void ConfView::forgetInstances() {
    for (auto& [name, group] : instances_) group.isKnown = false;
}

bool ConfView::isKnown(std::string_view instance) const {
    const auto found = instances_.find(instance);
    return found != instances_.end() && found->second.isKnown;
}

ConfView::Names ConfView::instances() const {
    Names names;
    forEachInstance([&names](const std::string& name, const Group& /*group*/) {
        names.emplace_hint(names.end(), name);
    });
    return names;
}
