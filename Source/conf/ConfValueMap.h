#ifndef CONF_CONFVALUEMAP_H
#define CONF_CONFVALUEMAP_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"
#include "conf/ConfNameIndex.h"
#include "conf/ConfNames.h"
#include "xpl/Xbytes.h"

// An ordered map from full keys to values. The keys of an instance share their prefix
// ("vtr.instance.<instance>."), so they are kept as one sorted list under its name: loading thirty
// thousand keys takes a thousand nodes, and a lookup finds the instance by its hash and compares
// short names.
class ConfValueMap {
 public:
    ConfValueMap() = default;
    ConfValueMap(const ConfValueMap&) = delete;
    ConfValueMap& operator=(const ConfValueMap&) = delete;

    // Null when the key is absent. Valid until the next change. `guess`, of a caller who knows that
    // an instance usually has all properties of a directory: the place of the key's among them.
    const std::string* find(std::string_view key, std::size_t guess = 0) const;

    void assign(std::string_view key, std::string_view value);
    void assignAll(const ConfValueMap& from);
    void erase(std::string_view key);

    // Gives an instance every property of the directory that it lacks, with its default. The map
    // names its entries with the directory's texts, which must live as long.
    void addMissing(std::string_view instance, const ConfDirectory& properties);

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    void clear();

    // Calls visit(prefix, name, value) for every entry, in byte order of prefix + name. The prefix
    // is valid during the call.
    template <typename Visit>
    void forEach(Visit visit) const;

 private:
    friend class ConfValueFeed;

    struct Entry {
        std::string_view name;  // of a directory, or of ownNames_
        std::string value;
    };
    using Group = std::vector<Entry>;  // sorted by name

    // The order of the prefixes that two instance names give: the "." behind them counts.
    struct PrefixOrder {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const noexcept;
    };
    using Groups = std::map<std::string, Group, PrefixOrder>;  // by instance name

    // Where an entry of that name is, or would be inserted; for a const and a mutable group.
    template <typename AnyGroup>
    static auto position(AnyGroup& group, std::string_view name);
    void assignIn(Group& group, std::string_view name, std::string_view value);

    Group& groupOf(std::string_view instance);
    void addMissingTo(Group& group, const ConfDirectory& properties);

    Groups groups_;
    ConfNameIndex<Group> groupIndex_;
    Group others_;  // keys that belong to no instance, whole
    ConfNames ownNames_;
    std::size_t size_ = 0;
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

inline bool ConfValueMap::PrefixOrder::operator()(std::string_view a,
                                                  std::string_view b) const noexcept {
    // A name that goes on with a "." comes behind the one that it begins with.
    if (a.size() < b.size() && xbytesStartsWith(b, a))
        return '.' <= static_cast<unsigned char>(b[a.size()]);
    if (b.size() < a.size() && xbytesStartsWith(a, b))
        return static_cast<unsigned char>(a[b.size()]) < '.';
    return xbytesCompare(a, b) < 0;
}

template <typename Visit>
void ConfValueMap::forEach(Visit visit) const {
    std::string prefix;
    auto group = groups_.begin();
    const auto enterGroup = [&] {
        if (group != groups_.end()) {
            prefix.assign(CONF_INSTANCE_PREFIX).append(group->first).append(".");
        }
    };
    const auto visitGroup = [&] {
        for (const Entry& entry : group->second) visit(prefix, entry.name, entry.value);
        ++group;
        enterGroup();
    };
    enterGroup();
    for (const Entry& other : others_) {
        // No other key has the prefix of a group, so a group comes whole before or after it.
        while (group != groups_.end() && prefix < other.name) visitGroup();
        visit(std::string_view{}, other.name, other.value);
    }
    while (group != groups_.end()) visitGroup();
}

#endif
