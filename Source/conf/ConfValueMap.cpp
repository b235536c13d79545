// The grouped map of configuration values.
#include "conf/ConfValueMap.h"

#include <algorithm>

#include "conf/ConfKey.h"

namespace {

// Length of the prefix that groups a key; 0 for a key that belongs to no instance.
std::size_t prefixLength(std::string_view key) {
    if (key.substr(0, CONF_INSTANCE_PREFIX.size()) != CONF_INSTANCE_PREFIX) return 0;
    const std::size_t dot = key.find('.', CONF_INSTANCE_PREFIX.size());
    return dot == std::string_view::npos ? 0 : dot + 1;
}

}  // namespace

template <typename AnyGroup>
auto ConfValueMap::position(AnyGroup& group, std::string_view name) {
    return std::lower_bound(
        group.begin(), group.end(), name,
        [](const Entry& entry, std::string_view wanted) { return entry.name < wanted; });
}

void ConfValueMap::assignIn(Group& group, std::string_view name, std::string_view value) {
    const auto found = position(group, name);
    if (found != group.end() && found->name == name) {
        found->value = value;
    } else {
        group.insert(found, {std::string(name), std::string(value)});
    }
}

const std::string* ConfValueMap::find(std::string_view key) const {
    const std::size_t prefix = prefixLength(key);
    const Group* group = &others_;
    if (prefix > 0) {
        const auto found = groups_.find(key.substr(0, prefix));
        if (found == groups_.end()) return nullptr;
        group = &found->second;
    }
    const std::string_view name = key.substr(prefix);
    const auto found = position(*group, name);
    return found != group->end() && found->name == name ? &found->value : nullptr;
}

void ConfValueMap::assign(std::string_view key, std::string_view value) {
    const std::size_t prefix = prefixLength(key);
    if (prefix == 0) {
        assignIn(others_, key, value);
    } else {
        assignIn(groups_[std::string(key.substr(0, prefix))], key.substr(prefix), value);
    }
}

void ConfValueMap::erase(std::string_view key) {
    const std::size_t prefix = prefixLength(key);
    const auto group = prefix == 0 ? groups_.end() : groups_.find(key.substr(0, prefix));
    if (prefix > 0 && group == groups_.end()) return;
    Group& entries = prefix == 0 ? others_ : group->second;
    const std::string_view name = key.substr(prefix);
    const auto found = position(entries, name);
    if (found != entries.end() && found->name == name) entries.erase(found);
    if (prefix > 0 && entries.empty()) groups_.erase(group);
}

void ConfValueMap::addMissing(std::string_view instance, const ConfDirectory& properties) {
    Group& group = groups_[confInstancePrefix(instance)];
    if (group.empty()) {
        group.reserve(properties.size());
        for (const auto& [name, property] : properties) {
            group.push_back({name, property.defaultValue});
        }
        return;
    }
    for (const auto& [name, property] : properties) {
        const auto found = position(group, name);
        if (found == group.end() || found->name != name) {
            group.insert(found, {name, property.defaultValue});
        }
    }
}

std::size_t ConfValueMap::size() const {
    std::size_t count = others_.size();
    for (const auto& group : groups_) count += group.second.size();
    return count;
}

void ConfValueFeed::enterInstance(std::string_view instance) {
    const auto found = map_.groups_.find(confInstancePrefix(instance));
    group_ = found == map_.groups_.end() ? nullptr : &found->second;
    next_ = 0;
}

void ConfValueFeed::assignInInstance(std::string_view name, std::string_view value) {
    if (next_ >= group_->size() || (*group_)[next_].name != name) {
        ConfValueMap::assignIn(*group_, name, value);
        next_ = static_cast<std::size_t>(ConfValueMap::position(*group_, name) - group_->begin());
    } else {
        (*group_)[next_].value = value;
    }
    ++next_;
}
