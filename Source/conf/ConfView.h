#ifndef CONF_CONFVIEW_H
#define CONF_CONFVIEW_H

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"

// State of one key.
struct ConfValue {
    std::string committed;                // empty while there is none
    std::unique_ptr<std::string> staged;  // null: no new value
    bool isCommitted = false;
    bool isRead = false;     // the committed value and its key were read from a line without a NUL
    bool isRemoved = false;  // not committed yet
    bool isListed = false;   // among the view's changed values

    bool isChanged() const { return staged != nullptr || isRemoved; }
    bool isEmpty() const { return !isCommitted && !isChanged(); }

    void commit(std::string_view value) {
        if (committed != value) committed = value;
        isCommitted = true;
        isRead = false;
    }
    void erase() {
        committed.clear();
        isCommitted = false;
    }
};

// The store's memory: committed values, staged changes and known instances. Does no I/O, logging or
// locking.
class ConfView {
 public:
    using Names = std::set<std::string, std::less<>>;

    // An instance: one value per property of the schema, by index.
    struct Group {
        std::vector<ConfValue> values;
        bool isKnown = false;  // whether it is in the set of instances
    };

    // The catalogue must be complete and outlive the view.
    explicit ConfView(const ConfCatalogue& catalogue)
        : catalogue_(catalogue), globals_(catalogue.globals().size()) {}
    ConfView(const ConfView&) = delete;
    ConfView& operator=(const ConfView&) = delete;

    const ConfCatalogue& catalogue() const { return catalogue_; }

    // State of a key: find() returns null when there is none, value() creates it. Its address is
    // stable.
    const ConfValue* find(const ConfKey& key) const;
    ConfValue& value(const ConfKey& key);

    // The same after making the key's instance known.
    ConfValue& knownValue(const ConfKey& key);

    // Stages a value. Setting the committed value only drops the staged one.
    void set(ConfValue& value, std::string_view to);

    void stage(ConfValue& value, std::string_view to);
    void remove(ConfValue& value);  // drops a staged value

    bool hasChanges() const;
    void discardChanges() noexcept;
    void mergeChanges() noexcept;  // makes them committed

    // Commits the default of each global property.
    void commitGlobalDefaults();

    // Makes an instance known and, if it was not, sets the defaults of properties that it lacks.
    Group& addInstance(std::string_view name);

    void makeKnown(std::string_view instance) { group(instance).isKnown = true; }
    void forgetInstance(std::string_view name);
    void forgetInstances();  // their values stay
    bool isKnown(std::string_view instance) const;
    Names instances() const;

    // Number of instances, including forgotten ones.
    std::size_t instanceCount() const { return instances_.size(); }

    // Calls visit(name, group) for each known instance, in order of the names.
    template <typename Visit>
    void forEachInstance(Visit visit) const;

    // Calls visit(prefix, name, value) for each committed or changed key, in byte order of prefix +
    // name. The prefix is valid during the call, and empty for a key that is not in the catalogue.
    template <typename Visit>
    void forEach(Visit visit) const;

 private:
    // Orders instance names as their key prefixes: the "." after the name counts.
    struct PrefixOrder {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };

    Group& group(std::string_view instance);  // makes a missing one
    void addDefaults(std::string_view instance, Group& group);
    void list(ConfValue& value);

    const ConfCatalogue& catalogue_;
    std::vector<ConfValue> globals_;                       // by index of the property
    std::map<std::string, Group, PrefixOrder> instances_;  // known and forgotten ones
    // A hash index of the same instances: a get takes 0.6 of the time of a search in the map.
    std::unordered_map<std::string_view, Group*> byName_;
    std::map<std::string, ConfValue, std::less<>> others_;  // by keys that are not declared
    std::vector<ConfValue*> changed_;  // each once, even if its change was dropped since
};

template <typename Visit>
void ConfView::forEachInstance(Visit visit) const {
    for (const auto& [name, group] : instances_) {
        if (group.isKnown) visit(name, group);
    }
}

template <typename Visit>
void ConfView::forEach(Visit visit) const {
    auto other = others_.begin();
    const auto visitOther = [&] {
        const auto& [key, value] = *other++;
        if (!value.isEmpty()) visit(std::string_view{}, std::string_view(key), value);
    };
    const auto visitOthersBefore = [&](std::string_view prefix, std::string_view name) {
        while (other != others_.end() && confKeyIsBefore(other->first, prefix, name)) visitOther();
    };
    const auto visitRange = [&](std::string_view prefix, const ConfSchema& schema,
                                const std::vector<ConfValue>& values, std::size_t from,
                                std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            if (values[i].isEmpty()) continue;
            const std::string_view name = schema[i].first;
            visitOthersBefore(prefix, name);
            visit(prefix, name, values[i]);
        }
    };
    // The instances' keys form one block among the global ones.
    const ConfSchema& globals = catalogue_.globals();
    const std::size_t border = globals.countBefore(CONF_INSTANCE_PREFIX.substr(CONF_PREFIX.size()));
    visitRange(CONF_PREFIX, globals, globals_, 0, border);
    for (const auto& [name, group] : instances_) {
        visitRange(confInstancePrefix(name), catalogue_.instances(), group.values, 0,
                   group.values.size());
    }
    visitRange(CONF_PREFIX, globals, globals_, border, globals_.size());
    while (other != others_.end()) visitOther();
}

#endif
