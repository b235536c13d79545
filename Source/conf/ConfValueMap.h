#ifndef CONF_CONFVALUEMAP_H
#define CONF_CONFVALUEMAP_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "conf/ConfCatalogue.h"

// An ordered map from full keys to values. The keys of an instance share their prefix
// ("vtr.instance.<instance>."), so they are kept as one sorted list under it: loading thirty
// thousand keys takes a thousand nodes, and a lookup compares short names.
class ConfValueMap {
 public:
    // Null when the key is absent. Valid until the next change.
    const std::string* find(std::string_view key) const;

    void assign(std::string_view key, std::string_view value);
    void erase(std::string_view key);

    // Gives an instance every property of the directory that it lacks, with its default.
    void addMissing(std::string_view instance, const ConfDirectory& properties);

    std::size_t size() const;

    // Calls visit(prefix, name, value) for every entry, in byte order of prefix + name.
    template <typename Visit>
    void forEach(Visit visit) const;

 private:
    friend class ConfValueFeed;

    struct Entry {
        std::string name;
        std::string value;
    };
    using Group = std::vector<Entry>;                          // sorted by name
    using Groups = std::map<std::string, Group, std::less<>>;  // by prefix

    // Where an entry of that name is, or would be inserted; for a const and a mutable group.
    template <typename AnyGroup>
    static auto position(AnyGroup& group, std::string_view name);
    static void assignIn(Group& group, std::string_view name, std::string_view value);

    Groups groups_;
    Group others_;  // keys that belong to no instance, whole
};

// Assigns many keys of one map that come in order, as a file has them: each is looked for right
// behind the one before.
class ConfValueFeed {
 public:
    explicit ConfValueFeed(ConfValueMap& map) : map_(map) {}

    // The keys of this instance come next; the group must exist.
    void enterInstance(std::string_view instance);

    void assignInInstance(std::string_view name, std::string_view value);

 private:
    ConfValueMap& map_;
    ConfValueMap::Group* group_ = nullptr;
    std::size_t next_ = 0;
};

template <typename Visit>
void ConfValueMap::forEach(Visit visit) const {
    auto group = groups_.begin();
    const auto visitGroup = [&visit](const std::string& prefix, const Group& entries) {
        for (const Entry& entry : entries) visit(prefix, entry.name, entry.value);
    };
    for (const Entry& other : others_) {
        // No other key has the prefix of a group, so a group comes whole before or after it.
        for (; group != groups_.end() && group->first < other.name; ++group) {
            visitGroup(group->first, group->second);
        }
        visit(std::string_view{}, other.name, other.value);
    }
    for (; group != groups_.end(); ++group) visitGroup(group->first, group->second);
}

#endif
