// The grouped map of configuration values.
#include "conf/ConfValueMap.h"

#include <algorithm>

namespace {

// Both parts of a key; no instance for a key that belongs to none, whose name is the whole key.
struct Place {
    bool isInstance = false;
    std::string_view instance;
    std::string_view name;
};

Place placeOf(std::string_view key) {
    const std::size_t start = CONF_INSTANCE_PREFIX.size();
    if (!xbytesStartsWith(key, CONF_INSTANCE_PREFIX)) return {false, {}, key};
    const std::size_t dot = xbytesFind(key, '.', start);
    if (dot == std::string_view::npos) return {false, {}, key};
    return {true, key.substr(start, dot - start), key.substr(dot + 1)};
}

void setValue(std::string& value, std::string_view to) {
    if (!xbytesSame(value, to)) value.assign(to);
}

}  // namespace

template <typename AnyGroup>
auto ConfValueMap::position(AnyGroup& group, std::string_view name) {
    return std::lower_bound(group.begin(), group.end(), name,
                            [](const Entry& entry, std::string_view wanted) {
                                return xbytesCompare(entry.name, wanted) < 0;
                            });
}

void ConfValueMap::assignIn(Group& group, std::string_view name, std::string_view value) {
    const auto found = position(group, name);
    if (found != group.end() && xbytesSame(found->name, name)) {
        setValue(found->value, value);
    } else {
        const std::string_view own = *ownNames_.emplace(name).first;
        group.insert(found, {own, std::string(value)});
    }
}

ConfValueMap::Group& ConfValueMap::groupOf(std::string_view instance) {
    const auto found = groups_.lower_bound(instance);
    if (found != groups_.end() && xbytesSame(found->first, instance)) return found->second;
    return groups_.try_emplace(found, std::string(instance))->second;
}

const std::string* ConfValueMap::find(std::string_view key) const {
    const Place place = placeOf(key);
    const Group* group = &others_;
    if (place.isInstance) {
        const auto found = groups_.find(place.instance);
        if (found == groups_.end()) return nullptr;
        group = &found->second;
    }
    const auto found = position(*group, place.name);
    return found != group->end() && xbytesSame(found->name, place.name) ? &found->value : nullptr;
}

void ConfValueMap::assign(std::string_view key, std::string_view value) {
    const Place place = placeOf(key);
    assignIn(place.isInstance ? groupOf(place.instance) : others_, place.name, value);
}

void ConfValueMap::erase(std::string_view key) {
    const Place place = placeOf(key);
    const auto group = place.isInstance ? groups_.find(place.instance) : groups_.end();
    if (place.isInstance && group == groups_.end()) return;
    Group& entries = place.isInstance ? group->second : others_;
    const auto found = position(entries, place.name);
    if (found != entries.end() && xbytesSame(found->name, place.name)) entries.erase(found);
    if (place.isInstance && entries.empty()) groups_.erase(group);
}

void ConfValueMap::addMissing(std::string_view instance, const ConfDirectory& properties) {
    Group& group = groupOf(instance);
    if (group.empty()) {
        group.reserve(properties.size());
        for (const auto& [name, property] : properties) {
            group.push_back({name, property.defaultValue});
        }
        return;
    }
    for (const auto& [name, property] : properties) {
        const auto found = position(group, name);
        if (found == group.end() || !xbytesSame(found->name, name)) {
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
    const auto found = map_.groups_.find(instance);
    group_ = found == map_.groups_.end() ? nullptr : &found->second;
    next_ = 0;
}

void ConfValueFeed::assignInInstance(std::string_view name, std::string_view value) {
    if (next_ >= group_->size() || !xbytesSame((*group_)[next_].name, name)) {
        map_.assignIn(*group_, name, value);
        next_ = static_cast<std::size_t>(ConfValueMap::position(*group_, name) - group_->begin());
    } else {
        setValue((*group_)[next_].value, value);
    }
    ++next_;
}
