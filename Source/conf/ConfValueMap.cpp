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
    const std::size_t dot = xbytesFind<'.'>(key, start);
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
        group.insert(found, {ownNames_.add(name), std::string(value)});
        ++size_;
    }
}

ConfValueMap::Group& ConfValueMap::groupOf(std::string_view instance) {
    if (Group* const known = groupIndex_.find(instance)) return *known;
    groupIndex_.reserveOne();
    const auto added = groups_.try_emplace(groups_.end(), std::string(instance));  // often the last
    groupIndex_.add(added->first, added->second);
    return added->second;
}

const std::string* ConfValueMap::find(std::string_view key, std::size_t guess) const {
    const Place place = placeOf(key);
    const Group* const group = place.isInstance ? groupIndex_.find(place.instance) : &others_;
    if (group == nullptr) return nullptr;
    if (guess < group->size() && xbytesSame((*group)[guess].name, place.name)) {
        return &(*group)[guess].value;
    }
    const auto found = position(*group, place.name);
    return found != group->end() && xbytesSame(found->name, place.name) ? &found->value : nullptr;
}

void ConfValueMap::assign(std::string_view key, std::string_view value) {
    const Place place = placeOf(key);
    assignIn(place.isInstance ? groupOf(place.instance) : others_, place.name, value);
}

void ConfValueMap::assignAll(const ConfValueMap& from) {
    for (const Entry& other : from.others_) assignIn(others_, other.name, other.value);
    for (const auto& [instance, entries] : from.groups_) {
        if (entries.empty()) continue;
        Group& group = groupOf(instance);
        for (const Entry& entry : entries) assignIn(group, entry.name, entry.value);
    }
}

void ConfValueMap::erase(std::string_view key) {
    const Place place = placeOf(key);
    Group* const group = place.isInstance ? groupIndex_.find(place.instance) : &others_;
    if (group == nullptr) return;
    const auto found = position(*group, place.name);
    if (found == group->end() || !xbytesSame(found->name, place.name)) return;
    group->erase(found);  // an empty list stays, and waits for the next key of the instance
    --size_;
}

void ConfValueMap::clear() {
    groupIndex_.clear();
    groups_.clear();
    others_.clear();
    size_ = 0;
}

void ConfValueMap::addMissing(std::string_view instance, const ConfDirectory& properties) {
    if (instance.find('.') == std::string_view::npos) {
        return addMissingTo(groupOf(instance), properties);
    }
    // Its keys read as those of the instance that its name begins with.
    for (const auto& [name, property] : properties) {
        const std::string key = confInstancePrefix(instance).append(name);
        if (find(key) == nullptr) assign(key, property.defaultValue);
    }
}

void ConfValueMap::addMissingTo(Group& group, const ConfDirectory& properties) {
    if (group.empty()) group.reserve(properties.size());
    // Both are in order, and usually the same names, as texts too.
    std::size_t at = 0;
    for (const auto& [name, property] : properties) {
        const bool isNext = at < group.size() && group[at].name.data() == name.data();
        while (!isNext && at < group.size() && xbytesCompare(group[at].name, name) < 0) ++at;
        if (!isNext && (at == group.size() || !xbytesSame(group[at].name, name))) {
            group.insert(group.begin() + static_cast<std::ptrdiff_t>(at),
                         {name, property.defaultValue});
            ++size_;
        }
        ++at;
    }
}

void ConfValueFeed::enterInstance(std::string_view instance) {
    group_ = map_.groupIndex_.find(instance);
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
